#pragma once
// Pictures of the spectrum. The drawing program part is loaded when the first picture is asked for,
// so that a batch without pictures starts without a window system's libraries.

#include "cli/options.h"
#include "core/global_block.h"

#include <string>
#include <string_view>

namespace nmr {

bool IsPictureExtension(std::string_view lower_case_extension);
Status WritePicture(const GlobalBlock& g, const ProcessOptions& options, const std::string& path);

} // namespace nmr
