#pragma once
// What a picture file is to be: its format, its size, and what is drawn into it. Also the one entry of the
// picture module, which nmr1d-cli loads when a picture is asked for: only then it pays for the graphics library.

#include "core/result.h"
#include "layout/canvas.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nmr {

enum class PictureFormat { pdf, svg, emf, png, bmp };
struct PictureFormatRow {
    PictureFormat format;
    std::string_view extension; ///< ".pdf"
    std::string_view caption;   ///< what it is good for, for the user
    std::string_view mime;
    bool pixels; ///< made of pixels, so that the resolution counts
};
std::span<const PictureFormatRow> PictureFormats();
const PictureFormatRow& RowOf(PictureFormat format);
/// By the extension of a path in upper or lower case; nothing for any other.
std::optional<PictureFormat> PictureFormatOf(std::string_view path);
/// ".pdf, .svg, .emf, .png or .bmp".
std::string PictureExtensions();

struct PictureSize {
    double width = 1200, height = 700;
    bool millimetres = false; ///< width and height; else pixels
    double dpi = 0;           ///< dots per inch; 0: 96 for a size in pixels, 300 for one in mm
    friend bool operator==(const PictureSize&, const PictureSize&) = default;
};
/// "1200x700" pixels or "160x90mm"; decimals with a point, blanks and upper case do no harm.
/// @return bad_value with a sentence that tells what is possible
Result<PictureSize> ParsePictureSize(std::string_view text);
/// Whether a picture of this size can be made in this format; else why not.
Status CheckPictureSize(const PictureSize& size, PictureFormat format);
double DpiOf(const PictureSize& size);
/// Width and height in canvas units of 1/96 inch.
RectD UnitsOf(const PictureSize& size);
/// Width and height in whole pixels, of the formats that have them.
RectD PixelsOf(const PictureSize& size);

struct PictureJob {
    std::function<void(Canvas&, const RectD&)> draw;
    PictureFormat format = PictureFormat::png;
    PictureSize size;
    std::string title;
};

/// Name of the entry and of the module's file, which lies beside the program.
inline constexpr const char* kPictureEntry = "nmr1d_make_picture";
inline constexpr const char* kPictureModule = "nmr1d-picture.so";
using PictureFunction = int (*)(const PictureJob*, std::string* answer);

} // namespace nmr

/// Draws into a picture. Returns 0 with the bytes of the file in `answer`, or another number with the reason there.
extern "C" int nmr1d_make_picture(const nmr::PictureJob* job, std::string* answer);
