#pragma once
// The forms that the logic asks for by name, with the names of their values: what each is handed,
// and what it hands back. The window builds the real forms from this page, a test scripts them.
//
// All values are text. Numbers are written with NumberValue (the shortest text that reads back to
// the same double), switches are "0" or "1", lists are one entry a line unless an index is told.

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nmr::forms {

using Values = std::map<std::string, std::string>;

// Words of DialogResult that most forms share.
inline constexpr char kOk[] = "OK";
inline constexpr char kCancel[] = "CANCEL";
inline constexpr char kClose[] = "CLOSE";
inline constexpr char kEnd[] = "END";

// NMR1D_Form01: user selection. "OK" with kName and kDoNotOpen, or "CLOSE" (button "Quit").
inline constexpr char kUserSelection[] = "NMR1D_Form01";
inline constexpr char kUsers[] = "USERS";           ///< in: names, one a line
inline constexpr char kLatest[] = "LATEST";         ///< in: name to preselect
inline constexpr char kName[] = "NAME";             ///< out: as typed or picked
inline constexpr char kDoNotOpen[] = "DO NOT OPEN"; ///< out: "1" when "Do not open this window next time." is ticked

// NMR1D_Form101: file types of the open dialog. In and out: Indexed(kExpression, n) and
// Indexed(kDescription, n), n from 1 to 5; an empty expression is the row "-----". The rows to pick
// from are those of FileTypeTable(). "OK", or "CANCEL", which hands back what stood in the fields
// too: whether changes may be dropped is asked by the logic, which shows the form again on a no.
inline constexpr char kFileTypes[] = "NMR1D_Form101";
inline constexpr char kExpression[] = "EXPRESSION";
inline constexpr char kDescription[] = "DESCRIPTION";
inline constexpr int kFileTypeSlots = 5;

// NMR1D_Form93: which files each instrument needs. In: kCount rows, Indexed(kRowName, n),
// Indexed(kRequired, n), Indexed(kNotes, n), n from 1; the texts may hold line breaks. Ends "CLOSE".
inline constexpr char kProcessableFiles[] = "NMR1D_Form93";
inline constexpr char kCount[] = "COUNT";
inline constexpr char kRowName[] = "NAME";
inline constexpr char kRequired[] = "REQUIRED";
inline constexpr char kNotes[] = "NOTES";

// NMR1D_Form102: "Fourie Transform". The DialogResult is kUntransformed, kTransformed, or "CANCEL".
inline constexpr char kFourierState[] = "NMR1D_Form102";
inline constexpr char kUntransformed[] = "0";
inline constexpr char kTransformed[] = "1";

// Form120: "Select Data Type(Floating Point?)". The DialogResult is one of three words.
inline constexpr char kNumberType[] = "Form120";
inline constexpr char kSingle[] = "SINGLE";
inline constexpr char kDouble[] = "DOUBLE";
inline constexpr char kLong[] = "LONG";

// The instrument table of m44. In: kCount rows from 1, and row kPresentRow for the data at hand (missing when
// they have no frequencies), each with the columns Indexed(kInstrument, n) ...; kSameAsPresent: number of the row
// that the present one would replace. Out with "OK": kRows, the numbers of the rows that stay, one a line, with
// kPresentRow where the present one was added; or "CANCEL".
inline constexpr char kInstrumentForm[] = "Instrument_Form";
inline constexpr char kInstrument[] = "INSTRUMENT";
inline constexpr char kProbe[] = "PROBE";
inline constexpr char kNucleus[] = "NUCLEUS";
inline constexpr char kFrequency[] = "FREQUENCY";
inline constexpr char kZeroPpm[] = "0 PPM";
inline constexpr char kSameAsPresent[] = "SAME";
inline constexpr int kPresentRow = 0;

// NMR1D_Form23: "Confirm Deleting "Multi Spectra"". The DialogResult is "ALL" (delete), "NON"
// (preserve) or "CANCEL".
inline constexpr char kDeleteMulti[] = "NMR1D_Form23";
inline constexpr char kDeleteAll[] = "ALL";
inline constexpr char kPreserve[] = "NON";

// Form110: a question with captions of its own. In: kTitle, kText, Indexed(kButton, n), n from 1 to
// kCount. The DialogResult is the caption of the button pressed; closing the form presses the last.
inline constexpr char kQuestion[] = "Form110";
inline constexpr char kTitle[] = "TITLE";
inline constexpr char kText[] = "TEXT";
inline constexpr char kButton[] = "BUTTON";

// NMR1D_Form20: "Multi(Array) Data". In: kRows. "OK" with kArrayMode ("1" "Read Array Data(According
// to File)", "2" "Read as Array Data(According to Parameter)", "3" "Read as Multi Spectum(First 20
// Data) only", "4" "Read as DEPT Data") and kDescending ("1" for "Large => Small"), or "CANCEL".
inline constexpr char kArrayData[] = "NMR1D_Form20";
inline constexpr char kRows[] = "ROWS";
inline constexpr char kArrayMode[] = "MODE";
inline constexpr char kDescending[] = "DESCENDING";

// NMR1D_Form103_CSV: "Edit Parameter". In and out the values of CsvChoice (formats/csv_choice.h), which
// names the form and makes its values: how a text table is read, and the parameters it lacks. "OK" with
// all values, or "CANCEL".

// NMR1D_Form104: "Set ASCII Data". In: kPoints of the spectrum, kDept "1" when edited DEPT spectra can be
// included. The DialogResult is the word of an AsciiChoice (formats/ascii.h), "R1, 8192", or "CANCEL".
inline constexpr char kAsciiData[] = "NMR1D_Form104";
inline constexpr char kPoints[] = "POINTS";
inline constexpr char kDept[] = "DEPT";

// NMR1D_Form21: "T1/T2 Data". Which row the phase is corrected on: the DialogResult is kFirstRow or
// kLastRow, or "CANCEL".
inline constexpr char kPhaseRow[] = "NMR1D_Form21";
inline constexpr char kFirstRow[] = "FIRST";
inline constexpr char kLastRow[] = "LAST";

// NMR1D_Form31, NMR1D_Form34, NMR1D_Form33: display scope, its default areas, grid. In and out: the
// values that DisplayScope with TickChoice, DefaultAreas and GridChoice (session/display_scope.h,
// session/tick_choice.h) write and read; the form makes one of them from what it is handed, works on it, and hands its
// values back with "OK". NMR1D_Form31 may also end with kEditAreas and its values: the default areas are then edited,
// and it shows again with them.
inline constexpr char kDisplayScope[] = "NMR1D_Form31";
inline constexpr char kEditAreas[] = "AREAS";
inline constexpr char kDefaultAreas[] = "NMR1D_Form34";
inline constexpr char kGrid[] = "NMR1D_Form33";

// Form111_History: "History of Data". In: kHead, and kCount rows Indexed(kSubject, n),
// Indexed(kOperator, n), Indexed(kDate, n), n from 1. Ends "CLOSE".
inline constexpr char kHistoryForm[] = "Form111_History";
inline constexpr char kHead[] = "HEAD";
inline constexpr char kSubject[] = "SUBJECT";
inline constexpr char kOperator[] = "OPERATOR";
inline constexpr char kDate[] = "DATE";

// Operator_Form22: "Add/Delete Operator Name". In and out: kNames, one a line; changes count at once, so
// it always ends "CLOSE".
inline constexpr char kOperatorForm[] = "Operator_Form22";
inline constexpr char kNames[] = "NAMES";

// NMR1D_ListView: "Parameters". In: kTitle, and kCount rows Indexed(kRowName, n), Indexed(kValue, n), n
// from 1. Ends "CLOSE", or kSaveList ("Save List"), after which it shows again.
inline constexpr char kParameterList[] = "NMR1D_ListView";
inline constexpr char kValue[] = "VALUE";
inline constexpr char kSaveList[] = "SAVE LIST";

// NMR1D_Form103: "Edit Parameters". In: kCount rows Indexed(kRowName, n), Indexed(kValue, n) and
// Indexed(kRowKind, n), n from 1: kNumberRow, kTextRow, or kListRow for a text picked from kNames or
// typed; then kSampleId and kComment; kWrong names a row to begin at. "OK" with Indexed(kValue, n),
// kSampleId and kComment, or "CANCEL".
inline constexpr char kParameterEditor[] = "NMR1D_Form103";
inline constexpr char kRowKind[] = "KIND";
inline constexpr char kNumberRow[] = "NUMBER";
inline constexpr char kTextRow[] = "TEXT";
inline constexpr char kListRow[] = "LIST";
inline constexpr char kSampleId[] = "SAMPLE ID";
inline constexpr char kComment[] = "COMMENT";
inline constexpr char kWrong[] = "WRONG";

// Form17: "Edit Parameter File". In and out: kCount rows Indexed(kKey, n), Indexed(kLabel, n),
// Indexed(kFormat, n), n from 1; kChanged, whether rows differ from the file; kSteps, the form's own text of
// what can be taken back and done again. In: kFile, the path that the rows come from. Ends with the word of
// a button (kOpenFile, kSaveFile, kPublicFile, kAboutFile), after which it shows again, or with "CLOSE".
inline constexpr char kParameterFile[] = "Form17";
inline constexpr char kKey[] = "KEY";
inline constexpr char kLabel[] = "LABEL";
inline constexpr char kFormat[] = "FORMAT";
inline constexpr char kFile[] = "FILE";
inline constexpr char kChanged[] = "CHANGED";
inline constexpr char kSteps[] = "STEPS";
inline constexpr char kOpenFile[] = "OPEN";
inline constexpr char kSaveFile[] = "SAVE";
inline constexpr char kPublicFile[] = "PUBLIC";
inline constexpr char kAboutFile[] = "ABOUT";

// SavePicture: a picture file of the plot. In and out: kPictureFormat (".pdf"), kPictureWidth and
// kPictureHeight in kPictureUnit ("mm" or "pixels"), kPictureDpi; those of PictureChoice
// (session/picture_commands.h). "OK" or "CANCEL".
inline constexpr char kSavePicture[] = "SavePicture";
inline constexpr char kPictureFormat[] = "FORMAT";
inline constexpr char kPictureWidth[] = "WIDTH";
inline constexpr char kPictureHeight[] = "HEIGHT";
inline constexpr char kPictureUnit[] = "UNIT";
inline constexpr char kPictureDpi[] = "DPI";

// PrintPlot: printer and paper. In and out: kPrinter ("PDF", which is always there, or a queue), kPaper (a code
// of layout/paper.h), kLandscape; those of PrintChoice (session/picture_commands.h). "OK" or "CANCEL".
inline constexpr char kPrint[] = "PrintPlot";
inline constexpr char kPrinter[] = "PRINTER";
inline constexpr char kPaper[] = "PAPER";
inline constexpr char kLandscape[] = "LANDSCAPE";

/// "EXPRESSION 3".
std::string Indexed(std::string_view name, int index);
/// The shortest text that reads back to the same number.
std::string NumberValue(double value);
/// "1" or "0".
std::string Switch(bool on);
/// The value of a key; empty when it is missing.
std::string Text(const Values& values, const std::string& key);
/// The value of a key as a number; `fallback` when it is missing or no number.
double Number(const Values& values, const std::string& key, double fallback = 0.0);
/// One entry a line; empty lines are left out.
std::string JoinLines(const std::vector<std::string>& entries);
std::vector<std::string> SplitLines(std::string_view text);

} // namespace nmr::forms
