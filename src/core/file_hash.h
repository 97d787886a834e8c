#pragma once
// Digests of files: whether a file is still the one that it was.

#include "core/result.h"

#include <filesystem>
#include <span>
#include <string>

namespace nmr {

/// SHA-256 as 64 digits of lower-case hexadecimal.
std::string Sha256(std::span<const std::byte> bytes);

/// The same of a regular file, which is read piece by piece.
/// @return unreadable for anything else
Result<std::string> Sha256OfFile(const std::filesystem::path& file);

} // namespace nmr
