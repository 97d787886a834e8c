#pragma once
// Commands of the main form about what is drawn and how: object switches, absolute display, inversion,
// coloured regions, the distance of two cursors.

#include "session/session.h"

namespace nmr {

/// Picture3: the window of two cursors and their distance. It stays open beside the spectrum; asking for it
/// shows it, or closes it again. Ends "CLOSE" at once.
inline constexpr char kDistanceWindow[] = "Picture3";

void m34_Click(Session& s);  ///< Absoluter Spectrum Mode
void m38_Click(Session& s);  ///< Show Distance of Peaks/Cursol Data
void m291_Click(Session& s); ///< Inversion of Spectrum
void m361_Click(Session& s); ///< Integral
void m368_Click(Session& s); ///< Integral Base Line
void m362_Click(Session& s); ///< Peak Data
void m365_Click(Session& s); ///< Peak Top Mark
void m366_Click(Session& s); ///< Peak Number
void m367_Click(Session& s); ///< Grid
void m369_Click(Session& s); ///< Color on Selected Region

void m371_Click(Session& s); ///< Position of Peak Data: Top
void m372_Click(Session& s); ///< Position of Peak Data: Bottom

} // namespace nmr
