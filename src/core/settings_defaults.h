#pragma once
// Colours, texts and small types that the defaults of the settings are made of.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace nmr {

constexpr std::int32_t ColorNumber(std::int32_t red, std::int32_t green, std::int32_t blue)
{
    return red + 256 * green + 65536 * blue;
}

/// Colours that stay apart for colour-blind readers.
/// Source: M. Okabe, K. Ito, "Color Universal Design", 2008.
namespace color_safe {
inline constexpr std::int32_t kBlack = ColorNumber(0, 0, 0);
inline constexpr std::int32_t kWhite = ColorNumber(255, 255, 255);
inline constexpr std::int32_t kGrey = ColorNumber(128, 128, 128);
inline constexpr std::int32_t kLightGrey = ColorNumber(200, 200, 200);
inline constexpr std::int32_t kPanelGrey = ColorNumber(240, 240, 240);
inline constexpr std::int32_t kOrange = ColorNumber(230, 159, 0);
inline constexpr std::int32_t kSkyBlue = ColorNumber(86, 180, 233);
inline constexpr std::int32_t kGreen = ColorNumber(0, 158, 115);
inline constexpr std::int32_t kYellow = ColorNumber(240, 228, 66);
inline constexpr std::int32_t kBlue = ColorNumber(0, 114, 178);
inline constexpr std::int32_t kVermillion = ColorNumber(213, 94, 0);
inline constexpr std::int32_t kPurple = ColorNumber(204, 121, 167);
} // namespace color_safe

/// Default texts. Labels and window expressions are in the text code of the page: "\g1 " Greek, "\i1 "
/// italic, "\+1 " superscript, "\cr" a new line.
namespace default_text {
inline constexpr const char* kFont = "Liberation Sans";
inline constexpr const char* kPpm = "\\< \\g1 d\\g0 /ppm";
inline constexpr const char* kHz = "\\< \\g1 n\\g0 /Hz";
inline constexpr const char* kKhz = "\\< \\g1 n\\g0 /kHz";
inline constexpr const char* kIntensity = "\\< Intensity";
inline constexpr const char* kResidue = "\\< Residue(%)";
inline constexpr const char* kTime = "\\< t / s";
inline constexpr const char* kExponential = R"(\<   f(\i1 t\i0 ) = exp( \g1 - p\f0  ·BF · \i1 t\i0  )\>)";
inline constexpr const char* kSineBell =
    R"(\<   f(\i1 t\i0  ) = sin( \g1 p \f0 ·\f0  (\i1 t\i0  \g1 -\f0  WS) / (WE \g1 -\f0  WS) )\>)";
inline constexpr const char* kSquaredSineBell =
    R"(\<   f(\i1 t\i0 ) = sin\+1 2\+0 ( \g1 p  \f0 ·\f0  (\i1 t\i0  \g1 -\f0  WS) / (WE \g1 -\f0  WS) )\>)";
inline constexpr const char* kGaussian =
    R"(\<   f(\i1 t\i0 ) = exp( \g1 - p \f0 · \f0 (\g1 -\f0  BF) \f0 ·\f0  (\i1 t\i0  \g1 -\f0  WS) )"
    R"(\g1 - p \f0 ·\f0  GF\+1 2\+0  \f0 ·\f0  (\i1 t\i0  \g1 -\f0  WS)\+1 2\+0 )\>)";
inline constexpr const char* kBlackmanHarris =
    R"(\<   f(\i1 t\i0 ) = 0.35875 \g1 -\f0  0.48829 · cos( 2\g1 p\f0  · (\i1 t\i0  \g1 -\f0  WS) / (WE \g1 -\f0  WS) ))"
    R"(\cr                       \g1 +\f0  0.14128 · cos( 4\g1 p\f0  · (\i1 t\i0  \g1 -\f0  WS) / (WE \g1 -\f0  WS) ))"
    R"(\cr                       \g1 -\f0  0.01168 · cos( 6\g1 p\f0  · (\i1 t\i0  \g1 -\f0  WS) / (WE \g1 -\f0  WS) )\>)";
} // namespace default_text

/// Number of spectra that carry a colour and fonts of their own.
inline constexpr std::size_t kSpectrumColors = 20;
/// FID SHIFT settings: three of each vendor group.
inline constexpr std::size_t kFidShiftKeys = 12;

/// Seven colours in full, then the same darker, then lighter, so that neighbours differ in hue.
constexpr std::array<std::int32_t, kSpectrumColors> DefaultSpectrumColors()
{
    constexpr std::array<std::array<std::int32_t, 3>, 7> base{
        {{0, 114, 178}, {213, 94, 0}, {0, 158, 115}, {204, 121, 167}, {230, 159, 0}, {86, 180, 233}, {90, 90, 90}}};
    std::array<std::int32_t, kSpectrumColors> colors{};
    for (std::size_t i = 0; i < colors.size(); ++i) {
        std::array<std::int32_t, 3> c = base[i % base.size()];
        for (std::int32_t& part : c) part = i < 7 ? part : i < 14 ? part * 6 / 10 : part + (255 - part) * 4 / 10;
        colors[i] = ColorNumber(c[0], c[1], c[2]);
    }
    return colors;
}

/// The fonts of one kind for each of the 20 spectra; an empty name or a size of 0 takes the common
/// font of that kind.
struct SpectrumFonts {
    std::array<std::string, kSpectrumColors> name{};
    std::array<double, kSpectrumColors> size{};
    std::array<std::int32_t, kSpectrumColors> bold{}, italic{}, charset{};
};

} // namespace nmr
