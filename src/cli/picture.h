#pragma once
// Pictures of the spectrum. The drawing program part is loaded when the first picture is asked for,
// so that a batch without pictures starts without a window system's libraries.

#include "cli/options.h"
#include "core/global_block.h"

#include <string>
#include <string_view>

namespace nmr {

bool IsPicture(std::string_view path);
/// Whether a picture of the wished size can be made; known before any data are read.
Status CheckPicture(const ProcessOptions& options, std::string_view path);
Status WritePicture(const GlobalBlock& g, const ProcessOptions& options, const std::string& path);

} // namespace nmr
