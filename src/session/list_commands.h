#pragma once
// Commands around the lists of peaks and integrals: their windows, their files, and copies of them.

#include "session/session.h"

#include <string>

namespace nmr {

/// The windows of the lists. They stay open beside the spectrum; asking for one shows it, or closes it again.
/// End "CLOSE" at once.
inline constexpr char kPeakListWindow[] = "PeakList";
inline constexpr char kIntegralListWindow[] = "IntegralList";

void PeakList_Click(Session& s);         ///< opens the peak list, or closes it
void IntegralCommand3_Click(Session& s); ///< "Show List": likewise for the integrals
void CopyPeaks_Click(Session& s);        ///< the line of peaks that a paper prints, to the clipboard

void m17_Click(Session& s);  ///< Save Peak List on File
void m173_Click(Session& s); ///< Save Integral List on File
void m131_Click(Session& s); ///< Save Integral Curve (ASCII Type)

/// Saves as the dialogs do, in the form that the extension tells: ".red", ".int", ".Ilist", ".csv" (running sums).
/// The user has been told of a failure.
Status Save_Peak_List(Session& s, const std::string& path);
Status Save_Integral_List(Session& s, const std::string& path);

} // namespace nmr
