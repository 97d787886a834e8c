#include "layout/picture_job.h"

#include "core/numbers.h"
#include "core/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr PictureFormatRow kFormats[] = {
    {PictureFormat::pdf, ".pdf", "PDF, with the fonts inside", "application/pdf", false},
    {PictureFormat::svg, ".svg", "SVG, for drawing programs and web pages", "image/svg+xml", false},
    {PictureFormat::emf, ".emf", "Ext. Meta File, for office programs", "image/emf", false},
    {PictureFormat::png, ".png", "PNG Format", "image/png", true},
    {PictureFormat::bmp, ".bmp", "Bitmap format", "image/bmp", true}};

constexpr double kScreenDpi = 96, kPaperBitmapDpi = 300;
constexpr double kLeastDpi = 10, kMostDpi = 4800;
constexpr double kLeastMillimetres = 5, kMostMillimetres = 2000;
constexpr double kLeastPixels = 20, kMostPixels = 20000, kMostPixelsInAll = 1e8;

Error BadSize(std::string text)
{
    return {ErrorCode::bad_value, "Picture", std::move(text)};
}

/// Both sides in limits, told by the one that isn't.
Status CheckSides(double width, double height, double least, double most, const char* unit)
{
    for (const double side : {width, height})
        if (!(side >= least && side <= most))
            return BadSize(
                fmt::format("a side of a picture is {:.0f} to {:.0f} {}, not {:.6g}", least, most, unit, side));
    return {};
}

} // namespace

std::span<const PictureFormatRow> PictureFormats()
{
    return kFormats;
}

const PictureFormatRow& RowOf(PictureFormat format)
{
    return *std::ranges::find(kFormats, format, &PictureFormatRow::format);
}

std::optional<PictureFormat> PictureFormatOf(std::string_view path)
{
    const std::string lower = ToLower(std::string(path));
    for (const PictureFormatRow& row : kFormats)
        if (lower.size() > row.extension.size() && lower.ends_with(row.extension)) return row.format;
    return std::nullopt;
}

std::string PictureExtensions()
{
    std::string text;
    for (const PictureFormatRow& row : kFormats) {
        if (!text.empty()) text += &row == std::end(kFormats) - 1 ? " or " : ", ";
        text += row.extension;
    }
    return text;
}

Result<PictureSize> ParsePictureSize(std::string_view text)
{
    PictureSize size;
    std::string rest = ToLower(std::string(text));
    std::erase(rest, ' ');
    for (const std::string_view unit : {"mm", "px"}) {
        if (!rest.ends_with(unit)) continue;
        size.millimetres = unit == "mm";
        rest.resize(rest.size() - unit.size());
        break;
    }
    const auto times = rest.find('x');
    const auto width = ParseNumber(rest.substr(0, times));
    const auto height = times == std::string::npos ? std::nullopt : ParseNumber(rest.substr(times + 1));
    if (!width || !height)
        return BadSize(fmt::format("the size of a picture is WIDTHxHEIGHT in pixels or WIDTHxHEIGHTmm, such as "
                                   "1200x700 or 160x90mm, not \"{}\"",
                                   text));
    size.width = *width;
    size.height = *height;
    // Limits that hold for any format; those of pixels hang on the resolution.
    const Status sides = size.millimetres
                             ? CheckSides(size.width, size.height, kLeastMillimetres, kMostMillimetres, "mm")
                             : CheckSides(size.width, size.height, kLeastPixels, kMostPixels, "pixels");
    if (!sides) return sides.error();
    if (!size.millimetres && (std::trunc(size.width) != size.width || std::trunc(size.height) != size.height))
        return BadSize(fmt::format("pixels are whole numbers, not \"{}\"", text));
    return size;
}

double DpiOf(const PictureSize& size)
{
    if (size.dpi != 0) return size.dpi;
    return size.millimetres ? kPaperBitmapDpi : kScreenDpi;
}

RectD UnitsOf(const PictureSize& size)
{
    const double factor = size.millimetres ? kUnitsPerMillimetre : kUnitsPerInch / DpiOf(size);
    return {0, 0, size.width * factor, size.height * factor};
}

RectD PixelsOf(const PictureSize& size)
{
    const double factor = size.millimetres ? DpiOf(size) / kMillimetresPerInch : 1;
    return {0, 0, std::round(size.width * factor), std::round(size.height * factor)};
}

Status CheckPictureSize(const PictureSize& size, PictureFormat format)
{
    const double dpi = DpiOf(size);
    if (!(dpi >= kLeastDpi && dpi <= kMostDpi))
        return BadSize(fmt::format("the resolution of a picture is {:.0f} to {:.0f} dots per inch, not {:.6g}",
                                   kLeastDpi, kMostDpi, dpi));
    const RectD units = UnitsOf(size), pixels = PixelsOf(size);
    if (!RowOf(format).pixels)
        return CheckSides(units.width / kUnitsPerMillimetre, units.height / kUnitsPerMillimetre, kLeastMillimetres,
                          kMostMillimetres, "mm");
    if (Status sides = CheckSides(pixels.width, pixels.height, kLeastPixels, kMostPixels, "pixels"); !sides)
        return sides;
    if (pixels.width * pixels.height > kMostPixelsInAll)
        return BadSize(fmt::format("a picture of {:.0f} x {:.0f} pixels is too large; {:.0f} million are possible",
                                   pixels.width, pixels.height, kMostPixelsInAll / 1e6));
    return {};
}

} // namespace nmr
