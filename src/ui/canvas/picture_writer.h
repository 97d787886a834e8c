#pragma once
// Drawings as picture files. What comes out hangs on the drawing alone: neither on the screen and its scale nor
// on the time.

#include "layout/picture_job.h"

#include <string>

namespace nmr {

/// The bytes of the file. Needs a QGuiApplication.
/// @return bad_value for a size that is not possible, with the reason; internal when the toolkit fails
Result<std::string> MakePicture(const PictureJob& job);

} // namespace nmr
