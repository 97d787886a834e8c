#pragma once
// "Save as" for files of text: the dialog, the safe writing, and what a save leaves behind.

#include "core/result.h"
#include "session/session.h"

#include <optional>
#include <string>
#include <vector>

namespace nmr {

/// What the save dialog of a kind of file says.
struct TextFileKind {
    std::string title;
    std::vector<FilterRow> filters; ///< without "All File", which comes last by itself
    std::string extension;          ///< with its dot; of the proposed name
};

/// The dialog, in the folder of the last save. The proposed name is never that of the file that the data were
/// measured into. @return nothing when the user gives up
std::optional<std::string> AskForTextFile(Session& s, const TextFileKind& kind, std::int16_t slot = 0);

/// Puts a text in the place of a file as Safe_Save does. On success the work of the slot counts as saved under
/// that name. The user has been told of a failure; everything then stands as before.
/// @return in_use, unwritable, or the error that stands in `text`
Status Save_Text(Session& s, const std::string& path, const Result<std::string>& text, std::int16_t slot = 0);

/// Says that another run holds a file. @return in_use, told
Status TellInUse(Asker& asker, const char* where);

void m10_5_Click(Session& s); ///< Save as JCAMP, extended form: the shown row as one table
void m10_6_Click(Session& s); ///< Save as JCAMP, reduced form: a page of real and one of imaginary points

// Of the multi spectra, one slot.
void SaveMultiJcamp(Session& s, std::int16_t slot);      ///< m187
void SaveMultiJcampPages(Session& s, std::int16_t slot); ///< m188

} // namespace nmr
