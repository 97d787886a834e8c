#include "session/scripted_edits.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/state_image.h"
#include "formats/tavo4.h"
#include "session/display_commands.h"
#include "session/forms.h"
#include "session/menu.h"
#include "session/read_flow.h"
#include "session/recovery.h"
#include "session/save_flow.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <unistd.h>
#include <utility>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 3; ///< names that saves take turns with
constexpr std::int32_t kMultiSlot = 4;

/// One write: the line is out whole when the process dies behind it.
void Say(const std::string& line)
{
    const std::string text = line + "\n";
    if (::write(STDOUT_FILENO, text.data(), text.size()) < 0) std::exit(1);
}

std::string StateOf(const GlobalBlock& g)
{
    return fmt::format("{:016x}", ChecksumOf(TakeWholeImage(g)));
}

/// What tells one version of a saved file from another.
std::string ContentOf(const DataSet& set)
{
    std::uint64_t sum = MarkPoints(set).checksum;
    sum = Checksum64(std::as_bytes(std::span(set.par.COMNT)), sum + set.Peaks.size() * 1000 + set.Integrals.size());
    return fmt::format("{:016x}", sum);
}

// --- What a tool of a kind does. Every edit leaves its number in the comment, so that no two states agree.

using Random = std::mt19937_64;

float Value(Random& random)
{
    return std::uniform_real_distribution<float>(0.5F, 1.5F)(random);
}

void ChangePoints(GlobalBlock& g, Random& random)
{
    const bool phase = random() % 2 == 0;
    UndoStep step = g.Undo.Begin(g, static_cast<std::int32_t>(phase ? UndoKind::phase : UndoKind::base_line));
    DataSet& set = g.Slots[0];
    const float factor = Value(random);
    // All points, or so few that only the step tells of them.
    if (phase)
        for (float& value : set.spec.DataRe.all()) value *= factor;
    else
        set.spec.DataRe[0][random() % static_cast<std::size_t>(set.par.POINT)] = factor;
    CopyDataToSource(set);
    g.Undo.Commit(g, std::move(step));
}

void ChangePeaks(GlobalBlock& g, Random& random)
{
    PushUndoStep(g, UndoKind::add_peak);
    auto& peaks = g.Slots[0].Peaks;
    if (peaks.size() > 20) peaks.erase(peaks.begin());
    peaks.push_back({static_cast<std::int32_t>(random() % 1000), Value(random), 0, 1.5, 0});
}

void ChangeIntegrals(GlobalBlock& g, Random& random)
{
    PushUndoStep(g, UndoKind::add_integral);
    auto& integrals = g.Slots[0].Integrals;
    if (integrals.size() > 10) integrals.clear();
    integrals.push_back({Value(random), 10, Value(random), 40, 0, 0, 0, 1, "a"});
}

void ChangeViews(GlobalBlock& g, Random& random)
{
    PushUndoStep(g, UndoKind::change_view);
    auto& views = g.Slots[0].MultiViews;
    if (views.size() > 5) views.clear();
    views.emplace_back().Offset = Value(random);
}

void ChangeRegions(GlobalBlock& g, Random& random)
{
    PushUndoStep(g, UndoKind::set_color_region);
    g.Slots[0].Regions[random() % 41] = {255, Value(random), Value(random) + 1};
}

void ChangeReference(GlobalBlock& g, Random& random)
{
    PushUndoStep(g, UndoKind::set_reference);
    DataSet& set = g.Slots[0];
    const auto shift = static_cast<double>(Value(random));
    for (double& ppm : set.spec.XAxis) ppm += shift;
    set.par.RefX = static_cast<float>(set.spec.XAxis[0]);
}

void ChangeMulti(GlobalBlock& g, Random& random)
{
    const std::int32_t slots[] = {kMultiSlot};
    PushUndoStep(g, UndoKind::change_multi, slots);
    DataSet& set = g.Slots[kMultiSlot];
    const std::int16_t number = set.par.SlotNumber;
    if (random() % 3 == 0) {
        ClearDataSet(g, kMultiSlot);
        set.spec = SpecBuffer{};
        return;
    }
    set = g.Slots[0];
    set.par.SlotNumber = number;
    set.par.YOffset = Value(random);
}

void ChangeDept(GlobalBlock& g, Random& random)
{
    PushUndoStep(g, UndoKind::change_dept);
    g.settings.dept_ch_90 = static_cast<double>(Value(random));
}

void ChangeComment(GlobalBlock& g, Random&)
{
    PushUndoStep(g, UndoKind::change_parameter);
}

constexpr void (*kEdits[])(GlobalBlock&, Random&) = {
    ChangePoints,    ChangePeaks, ChangeIntegrals, ChangeViews,   ChangeRegions,
    ChangeReference, ChangeMulti, ChangeDept,      ChangeComment, ChangePeaks,
};

} // namespace

EditScript ParseEditScript(const std::string& text)
{
    std::vector<std::string> parts{""};
    for (const char c : text)
        if (c == '|')
            parts.emplace_back();
        else
            parts.back() += c;
    EditScript script;
    if (parts.size() < 3) return script;
    script.seed = static_cast<std::uint64_t>(ParseInteger(parts[0]).value_or(0));
    script.folder = parts[1];
    script.data.assign(parts.begin() + 2, parts.end());
    return script;
}

Button ScriptAsker::Message(const MessageBox& box)
{
    std::string text = box.text;
    std::ranges::replace(text, '\n', ' ');
    Say("message " + text);
    return box.buttons.front();
}

std::optional<FileChoice> ScriptAsker::File(const FileDialog&)
{
    return std::nullopt;
}

FormAnswer ScriptAsker::Form(const FormRequest& request)
{
    if (request.form == forms::kUserSelection) return {forms::kOk, {{forms::kName, "COMMON"}}};
    if (request.form == forms::kQuestion) {
        const std::string first = forms::Text(request.values, forms::Indexed(forms::kButton, 1));
        return {first == "Save" ? "Do not Save" : first, {}};
    }
    if (request.form == forms::kDeleteMulti) return {forms::kDeleteAll, {}};
    auto values = request.values;
    for (const auto& [key, value] : std::exchange(next_values, {})) values[key] = value;
    return {forms::kOk, values};
}

void ScriptAsker::Notice(const std::string& text)
{
    Say("notice " + text);
}

ScriptedEdits::ScriptedEdits(Session& s, ScriptAsker& asker, EditScript script) :
    s_(s), asker_(asker), script_(std::move(script)), random_(script_.seed), shown_(std::move(s.display_changed))
{
    s_.display_changed = [this] { Note(); };
}

/// Around what display_changed does: the state that is about to be written, and that it has been.
void ScriptedEdits::Note()
{
    const GlobalBlock& g = s_.g;
    if (!IsKept(g.Slots[0])) return;
    const std::string state = StateOf(g) + (g.Slots[0].par.DataChanged == 1 ? " unsaved" : " saved");
    Say("pending " + state);
    if (shown_) shown_();
    Say("accepted " + state);
}

void ScriptedEdits::CheckFiles()
{
    for (const std::string& name : ListFiles(script_.folder, "*.tvo1")) {
        const auto g = std::make_unique<GlobalBlock>(); // a file of several slots asks before it overwrites
        NumberSlots(*g);
        const std::string path = (script_.folder / name).string();
        const bool whole = static_cast<bool>(ReadDataTavo4(*g, asker_, path, 0));
        Say("file " + path + " " + (whole ? ContentOf(g->Slots[0]) : "damaged"));
    }
}

void ScriptedEdits::Begin()
{
    const std::function<void()> note = std::exchange(s_.display_changed, shown_);
    Offer_Recovery(s_);
    s_.display_changed = note;
    const bool recovered = IsKept(s_.g.Slots[0]);
    Say(recovered ? "recovered " + StateOf(s_.g) : "fresh");
    CheckFiles();
    if (!recovered) Read();
}

void ScriptedEdits::Read()
{
    static_cast<void>(Read_Path(s_, script_.data[Pick(script_.data.size())]));
}

void ScriptedEdits::Save()
{
    DataSet& set = s_.g.Slots[0];
    const std::string path = (script_.folder / fmt::format("saved{}.tvo1", Pick(kFiles))).string();
    const std::string what = path + " " + ContentOf(set);
    Say("saving " + what);
    if (Save_Ver4(s_, path)) Say("saved " + what);
}

void ScriptedEdits::Edit()
{
    GlobalBlock& g = s_.g;
    kEdits[Pick(std::size(kEdits))](g, random_);
    ParamBlock& par = g.Slots[0].par;
    par.COMNT = fmt::format("edit {:x}", random_());
    par.DataChanged = 1;
    par.DataFromFile = 0;
    s_.display_changed();
}

void ScriptedEdits::Step()
{
    if (!IsKept(s_.g.Slots[0])) return Read();
    const std::size_t dice = Pick(40);
    if (dice == 0) return Read();
    if (dice < 4) return Save();
    if (dice < 10) return m20_Click(s_);
    if (dice < 14) return ReDo_Click(s_);
    if (dice < 16) return m367_Click(s_);
    Edit();
}

} // namespace nmr
