#pragma once
// Scenes into picture files.

#include "layout/picture_job.h"

#include <QString>

namespace nmr {

/// Writes the picture; returns an empty text, or the reason why it could not. Needs a QGuiApplication.
QString WritePictureFile(const PictureJob& job);

} // namespace nmr
