#pragma once
// Which process wrote a file, so that a later run can tell whether it still lives.

#include <cstdint>
#include <string>

namespace nmr {

/// A number of a process is used again; together with its start and the start of the machine it is not.
struct RunIdentity {
    std::string host;
    std::string boot;         ///< identity of this start of the machine
    std::int64_t process = 0; ///< its number
    std::int64_t start = 0;   ///< ticks from the start of the machine
};

RunIdentity ThisRun();

/// True when the very process is there and has not ended. A process of another machine can't be seen
/// and counts as gone: the lock on its file has to tell.
bool IsAlive(const RunIdentity& run);

} // namespace nmr
