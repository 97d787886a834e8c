#pragma once
// Light and dark looks of the program, and its drawn icons.

#include <QColor>
#include <QIcon>

#include <cstdint>

class QApplication;

namespace nmr {

/// 0 as the desktop, 1 light, 2 dark; the setting THEME.
void ApplyTheme(QApplication& app, std::int32_t theme);
/// Whether the program's windows are dark now.
bool IsDark();

enum class Glyph { open, all, back, taller, lower, grid, wider, narrower, previous, next, parameters };
/// Drawn in the colour of the button text, crisp at any size and scale.
QIcon GlyphIcon(Glyph glyph);

} // namespace nmr
