#include "session/instrument_table.h"

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "session/forms.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace nmr {
namespace {

constexpr std::size_t kMostInstruments = 2001;
constexpr double kWindowMHz = 0.05;

void PutRow(forms::Values& values, int n, const InstrumentRow& row)
{
    using namespace forms;
    values[Indexed(kInstrument, n)] = row.instrument;
    values[Indexed(kProbe, n)] = row.probe;
    values[Indexed(kNucleus, n)] = row.nucleus;
    values[Indexed(kFrequency, n)] = FormatNumber("####0.0000##", row.frequency);
    values[Indexed(kZeroPpm, n)] = FormatNumber("####0.0000000#", row.ppm0);
    values[Indexed(kDate, n)] = row.date;
}

} // namespace

std::optional<InstrumentRow> PresentInstrument(const GlobalBlock& g)
{
    const ParamBlock& par = g.Slots[0].par;
    if (par.POINT < 1 || !(par.ObsCenter > 0.0) || !(par.OBFRQ0PPM > 0.0)) return std::nullopt;
    return InstrumentRow{par.InstrumentID, par.Probe,     par.OBNUC,
                         par.ObsCenter,    par.OBFRQ0PPM, FormatDate("dd/mmm/yyyy hh:nn:ss", NowLocal())};
}

std::optional<std::size_t> SameInstrument(const GlobalBlock& g, const InstrumentRow& own)
{
    const auto same = std::ranges::find_if(g.Instruments, [&](const InstrumentRow& row) {
        return EqualsNoCase(row.instrument, own.instrument) && EqualsNoCase(row.probe, own.probe) &&
               EqualsNoCase(row.nucleus, own.nucleus) && std::abs(row.frequency - own.frequency) <= kWindowMHz;
    });
    if (same == g.Instruments.end()) return std::nullopt;
    return static_cast<std::size_t>(same - g.Instruments.begin());
}

bool StoreInstrument(GlobalBlock& g)
{
    const auto own = PresentInstrument(g);
    if (!own) return false;
    const auto same = SameInstrument(g, *own);
    if (!same && g.Instruments.size() >= kMostInstruments) return false;
    if (same)
        g.Instruments[*same] = *own;
    else
        g.Instruments.push_back(*own);
    g.InstrumentsChanged = true;
    return true;
}

void m44_Click(Session& s)
{
    GlobalBlock& g = s.g;
    const auto own = PresentInstrument(g);
    forms::Values values{{forms::kCount, std::to_string(g.Instruments.size())}};
    for (std::size_t i = 0; i < g.Instruments.size(); ++i) PutRow(values, static_cast<int>(i) + 1, g.Instruments[i]);
    if (own) PutRow(values, forms::kPresentRow, *own);
    const auto same = own ? SameInstrument(g, *own) : std::nullopt;
    if (same) values[forms::kSameAsPresent] = std::to_string(*same + 1);
    const FormAnswer answer = s.asker.Form({forms::kInstrumentForm, values});
    if (answer.dialog_result != forms::kOk) return;
    std::vector<InstrumentRow> rows;
    for (const std::string& line : forms::SplitLines(forms::Text(answer.values, forms::kRows))) {
        const auto number = ParseNumber(line);
        if (!number || rows.size() >= kMostInstruments) continue;
        const auto index = static_cast<std::size_t>(std::max(*number, 0.0));
        if (index == forms::kPresentRow && own) rows.push_back(*own);
        if (index >= 1 && index <= g.Instruments.size()) rows.push_back(g.Instruments[index - 1]);
    }
    const auto line = [](const InstrumentRow& r) {
        return std::tie(r.instrument, r.probe, r.nucleus, r.frequency, r.ppm0, r.date);
    };
    if (std::ranges::equal(rows, g.Instruments, {}, line, line)) return; // nothing for the exit to ask about
    g.Instruments = std::move(rows);
    g.InstrumentsChanged = true;
}

} // namespace nmr
