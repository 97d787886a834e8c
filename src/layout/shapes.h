#pragma once
// Outlines as points, for canvases that have nothing better.

#include "layout/canvas.h"

namespace nmr {

/// A part of the line of an ellipse in chords; angles counter-clockwise from its right end.
std::vector<PointD> ArcPoints(const RectD& rect, double start_deg, double sweep_deg);
/// The four corners, and the first again.
std::vector<PointD> CornersOf(const RectD& rect);
/// The dashes of a line that begins with one; `dashes` as DashesOf gives them. A line that would fall into more
/// than 100,000 pieces stays whole.
std::vector<std::vector<PointD>> DashPieces(std::span<const PointD> points, std::span<const double> dashes);

} // namespace nmr
