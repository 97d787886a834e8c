#pragma once
// The forms that edit formatted texts, with the names of their values, as session/forms.h has those of others.

#include "session/forms.h"

namespace nmr::forms {

// Form105: editor of a formatted text as it looks; Form105Ext: of its codes. In: kText, and the text's own
// font: kFontName, kFontSize in points, kFontBold, kFontItalic, kFontColor; kTitle of the window. "OK" with
// kText, or "CANCEL". Form105_X, "Special Charactor": the DialogResult is the key of a mark, with its letters
// as kText, or "CANCEL". Form106RTF: what the codes mean; ends "CLOSE".
inline constexpr char kTextEditor[] = "Form105";
inline constexpr char kTextEditorTwin[] = "Form105z";
inline constexpr char kCodeEditor[] = "Form105Ext";
inline constexpr char kSpecialLetters[] = "Form105_X";
inline constexpr char kNoteOnCodes[] = "Form106RTF";
inline constexpr char kFontName[] = "FONT NAME";
inline constexpr char kFontSize[] = "FONT SIZE";
inline constexpr char kFontBold[] = "FONT BOLD";
inline constexpr char kFontItalic[] = "FONT ITALIC";
inline constexpr char kFontColor[] = "FONT COLOR";

// NMR1D_Form103 besides: in and out kCommentRtf, the comment as rich text; "" when there is none.
inline constexpr char kCommentRtf[] = "COMMENT RTF";

} // namespace nmr::forms
