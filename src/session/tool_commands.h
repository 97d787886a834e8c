#pragma once
// Commands that open the tools of the main form, and what every other command does before it begins.

#include "session/menu.h"

namespace nmr {

void m21_Click(Session& s);  ///< Set Reference (Main Spectrum)
void m22_Click(Session& s);  ///< Phase Correction
void m23_Click(Session& s);  ///< Base Line Correction
void m24_Click(Session& s);  ///< Peak Picking
void m25_Click(Session& s);  ///< Integral
void m242_Click(Session& s); ///< Set Color on the Selected Region

/// Fixes or discards what stands open, by its question. False: the command that asked is to end.
[[nodiscard]] bool Close_Tool(Session& s);
/// Whether a command of the menu changes no data, or sees to the open tool itself: the tool is closed before
/// any other.
bool Leaves_Tool_Open(const MenuRow& row);

} // namespace nmr
