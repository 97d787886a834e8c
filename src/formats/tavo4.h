#pragma once
// The native file Ver.4 (*.tvo1, *.tvo, *.tv1): one data block for each used slot, and the page layout.
// Little-endian; text in CP932. Versions 4.00 and 4.01 are read, 4.01 is written.
//
// What this program does not use of a file is kept with the set and written back: sections of the page
// layout, data blocks beyond the last slot, words without a name. Addresses inside them are mended.

#include "formats/registry.h"
#include "formats/tavo4_cells.h"

#include <string>

namespace nmr {

/// The whole file as it is to stand at `path`, which the head names. Slot 0: every used slot and the
/// layout; any other: that slot alone as block 00. Fields of the records that have drifted are repaired
/// in the records themselves.
///
/// @return bad_value for an empty slot or one whose arrays don't hold its points, too_large when
///         addresses of 32 bits can't reach all of it
Result<std::vector<std::byte>> EncodeTavo4(GlobalBlock& g, const std::string& path, std::int16_t slot);

/// Writes the file new. A failure leaves what stands there; system_error tells errno.
Status WriteDataTavo4(GlobalBlock& g, const std::string& path, std::int16_t slot);

/// Slot 0: all blocks into their slots, the asker being asked before a slot above 0 that holds data is
/// overwritten, and the layout. Any other slot: block 0 into it. A slot whose block is no good stays
/// empty, the user is told, and the rest of the file is read.
///
/// @return bad_format (the user knows) for another kind of file or when the wanted block is no good,
///         truncated when the file ends before its address table
Status ReadDataTavo4(GlobalBlock& g, Asker& asker, const std::string& path, std::int16_t slot);
/// The same from the bytes of a file.
Status DecodeTavo4(GlobalBlock& g, Asker& asker, ByteSpan file, std::int16_t slot);

/// Appends the data block of a slot and returns the position behind it.
std::size_t WriteDataBlock4(GlobalBlock& g, tavo4::FileImage& image, std::int16_t slot);
/// Reads the block that begins at `start`; nothing behind `end` is looked at. The slot is cleared first,
/// and left empty by a failure.
Status ReadDataBlock4(GlobalBlock& g, ByteSpan file, std::int64_t start, std::int64_t end, std::int16_t slot);

/// Reader of the registry: slot 0 takes the whole file.
Status ReadTavo4(const ReadRequest& request);

} // namespace nmr
