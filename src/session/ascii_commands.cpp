#include "session/ascii_commands.h"

#include "core/text.h"
#include "session/display_scope.h"
#include "session/forms.h"
#include "session/menu.h"
#include "session/read_flow.h"
#include "session/text_save.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>

namespace nmr {
namespace {

/// What NMR1D_Form104 was answered with; nothing after "Quit".
std::optional<AsciiChoice> AskForData(Session& s)
{
    const FormAnswer answer = s.asker.Form(
        {forms::kAsciiData,
         {{forms::kPoints, fmt::format("{}", s.g.Slots[0].par.POINT)}, {forms::kDept, forms::Switch(false)}}});
    s.g.DialogResult = answer.dialog_result;
    return ParseAsciiWord(answer.dialog_result);
}

Result<std::string> TextOf(const GlobalBlock& g, const std::string& path, const AsciiChoice& choice)
{
    if (IsCsvName(path)) return Ascii2Text(g, 0);
    return AsciiText(g, choice.mode, 0, choice.points, FullScale(g.Slots[0]));
}

} // namespace

bool IsCsvName(const std::string& path)
{
    return EqualsNoCase(std::filesystem::path(path).extension().string(), ".csv");
}

Status Save_Ascii(const GlobalBlock& g, const std::string& path, const AsciiChoice& choice)
{
    if (IsCsvName(path)) return WriteAscii2(path, g, 0);
    return WriteDataAscii(path, g, choice.mode, 0, choice.points, FullScale(g.Slots[0]));
}

void m10_7_Click(Session& s)
{
    const std::optional<std::string> path = AskForTextFile(
        s, {"Save Data(ASCII)", {{"ASCII", "*.txt;*.dat;*.asc"}, {"CSV with all parameters", "*.csv"}}, ".txt"});
    if (!path) return;
    AsciiChoice choice;
    if (!IsCsvName(*path)) {
        const std::optional<AsciiChoice> asked = AskForData(s);
        if (!asked) return;
        choice = *asked;
    }
    static_cast<void>(Save_Text(s, *path, TextOf(s.g, *path, choice))); // the user has been told
}

void NMR1D_m112_Command(Session& s)
{
    static_cast<void>(NMR1D_m112_Click(s)); // the user has been told
}

} // namespace nmr
