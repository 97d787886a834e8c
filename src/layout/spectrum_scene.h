#pragma once
// A picture of spectra: what the main window, the printed page and the picture files of nmr1d-cli
// draw alike.

#include "core/global_block.h"
#include "layout/integral_marks.h"
#include "layout/peak_marks.h"
#include "layout/plot.h"

#include <memory>
#include <string>
#include <vector>

namespace nmr {

/// Colours of a plot.
struct PlotColors {
    Rgba background{255, 255, 255}, curve{0, 114, 178}, imaginary{213, 94, 0}, window{0, 158, 115};
    Rgba axis{0, 0, 0}, text{0, 0, 0}, grid{220, 220, 220}, mark{213, 94, 0};
};
/// The colours of the settings; on a dark background each is turned round in lightness, so that it keeps
/// its hue and its distance from the ground.
PlotColors ColorsOf(const Settings& settings, bool dark = false);
Rgba ForDarkGround(Rgba color);

/// A row with the axis it lies on. Row and pyramid must outlive the scene.
struct SceneCurve {
    std::span<const float> row;
    std::shared_ptr<const MinMaxPyramid> pyramid;
    double first_ppm = 0, step_ppm = 1;
    Pen pen;
};

/// A part of the axis in which the first curve has a colour of its own.
struct SceneRegion {
    double left_ppm = 0, right_ppm = 0; ///< left the larger
    Rgba color;
};

struct SpectrumScene {
    std::vector<SceneCurve> curves;
    std::vector<SceneRegion> regions;    ///< from left to right, none over another
    double left_ppm = 10, right_ppm = 0; ///< shown range, the left the larger
    double low = 0, high = 1;            ///< intensity at the bottom and the top
    AxisStyle axis;
    PeakMarks peaks;         ///< of the first curve
    IntegralMarks integrals; ///< likewise
    bool show_axis = true, show_grid = false;
    GridStyle grid;
    std::string title; ///< in the upper left corner; empty for none
    FontSpecD title_font{"Liberation Sans", 11};
    Rgba background{255, 255, 255}, text; ///< a background of alpha 0 leaves the paper as it is
};

/// Intensities at the bottom and the top of a plot that shows a row at a magnification: at 1 the highest
/// point takes 95 % of the height, negative signals are in sight, and zero stays where it is whatever
/// the magnification.
struct IntensityRange {
    double low = 0, high = 1;
    double full = 1; ///< intensity of the highest point
};
IntensityRange ChooseIntensityRange(const MinMaxPyramid& pyramid, const DataSet& set, double magnification);

/// Axis style by the settings and the nucleus of the set.
AxisStyle AxisStyleOf(const Settings& settings, const DataSet& set, const PlotColors& colors);
GridStyle GridStyleOf(const Settings& settings, const PlotColors& colors);

struct SceneOptions {
    std::int32_t row = 0;
    double left_ppm = 0, right_ppm = 0; ///< both 0: the whole axis
    double magnification = 1;
    bool dark = false;
    /// For a page or a picture file: line widths in tenths of a mm and the paper's ground by the settings of print,
    /// on a canvas of 1/96 inch. Else for the display, in its pixels.
    bool paper = false;
    bool title = true;
    bool marks = true; ///< peaks and integrals, as the settings show them
    /// Drawn in place of the row's real part; must outlive the scene. Empty: the real part.
    std::span<const float> instead{};
    std::shared_ptr<const IntegralCurves> integrals{}; ///< of the drawn row, where they were made before
};
/// The magnitude of a row, which has no phase: sqrt(re^2 + im^2) of each of its points.
std::vector<float> AbsoluteRow(const DataSet& set, std::int32_t row);
/// The scene of one row of a spectrum. An empty set gives a scene without a curve.
SpectrumScene MakeScene(const DataSet& set, const Settings& settings, const SceneOptions& options = {},
                        std::shared_ptr<const MinMaxPyramid> pyramid = nullptr);

/// Where the curves stand when a scene is drawn into `rect`: the rest is axis and margins.
PlotFrame SceneFrame(Canvas& canvas, const RectD& rect, const SpectrumScene& scene);
/// Background, grid, curves, axis and title.
void DrawSpectrumScene(Canvas& canvas, const RectD& rect, const SpectrumScene& scene);

} // namespace nmr
