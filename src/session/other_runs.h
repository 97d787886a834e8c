#pragma once
// Whether this program is running more than once on this machine.

namespace nmr {

/// True when another process was started from the same program file. On a machine that does not
/// tell, true: what belongs to another run is then left alone.
bool AnotherRunPresent();

} // namespace nmr
