#pragma once
// One figure with everything that a canvas can draw, each object by its name, so that a test can leave it out.

#include "layout/picture_job.h"

#include <functional>
#include <string>
#include <vector>

namespace nmr::test {

struct FigureObject {
    std::string name;
    std::function<void(Canvas&)> draw;
};
/// 160 x 110 mm.
const std::vector<FigureObject>& FigureObjects();
inline constexpr PictureSize kFigureSize{160, 110, true, 150};

/// The figure, without the object of a name.
PictureJob FigureJob(PictureFormat format, const std::string& without = {});

} // namespace nmr::test
