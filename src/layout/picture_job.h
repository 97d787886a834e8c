#pragma once
// The one entry of the picture module, which nmr1d-cli loads when a picture is asked for: only then it
// pays for the graphics library.

#include "layout/spectrum_scene.h"

#include <cstddef>
#include <string>

namespace nmr {

struct PictureJob {
    const SpectrumScene* scene = nullptr;
    std::string path; ///< .png, .svg or .pdf decides the format
    double width = 1200, height = 600;
    bool millimetres = false; ///< width and height; else pixels of 1/96 inch
    double dpi = 96;          ///< of a PNG
};

/// Name of the entry and of the module's file, which lies beside the program.
inline constexpr const char* kPictureEntry = "nmr1d_write_picture";
inline constexpr const char* kPictureModule = "nmr1d-picture.so";
using PictureFunction = int (*)(const PictureJob*, char* message, std::size_t size);

} // namespace nmr

/// Draws the scene into a file. Returns 0, or another number with the reason in `message` (always ended
/// by a zero byte, cut to `size`).
extern "C" int nmr1d_write_picture(const nmr::PictureJob* job, char* message, std::size_t size);
