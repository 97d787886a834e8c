#pragma once
// Spectra as text: the command of the menu, and the same without questions.

#include "core/result.h"
#include "formats/ascii.h"
#include "session/session.h"

#include <string>

namespace nmr {

/// "Save as", "ASCII type": asks for a file, then for what is to be written (NMR1D_Form104). A name that
/// ends with ".csv" gets the block form with every parameter and all points, without that question.
void m10_7_Click(Session& s);

/// Writes the spectrum of slot 0 to a path as the command does.
Status Save_Ascii(const GlobalBlock& g, const std::string& path, const AsciiChoice& choice);

/// Whether a path asks for the block form.
bool IsCsvName(const std::string& path);

} // namespace nmr
