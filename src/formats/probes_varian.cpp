// The probe of Varian parameter files: FID or array of one dimension, or two dimensions.

#include "core/text.h"
#include "formats/probes.h"
#include "formats/varian_procpar.h"

#include <cmath>

namespace nmr {

using namespace probe_detail;

namespace {

/// What the decision needs.
struct VarianValues {
    std::string array;
    double array_rows = 0, observe_mhz = 0, decouple_mhz = 0;
    std::string observe = "NUL", decouple = "NUL";
};

VarianValues ValuesOf(const VarianParameters& parameters, const NuclearTable& nuclides)
{
    VarianValues values;
    values.array = ToUpper(parameters.Text("array").value_or(""));
    values.array_rows = parameters.Number("arraydim").value_or(0.0);
    values.observe_mhz = parameters.Number("sfrq").value_or(0.0);
    values.decouple_mhz = parameters.Number("dfrq").value_or(0.0);
    if (const auto name = parameters.Text("tn")) values.observe = nuclides.Nucleus_Normalize(*name);
    if (const auto name = parameters.Text("dn")) values.decouple = nuclides.Nucleus_Normalize(*name);
    return values;
}

/// Rows of one parameter look like increments of a second dimension: only the user can tell.
bool UserSaysTwoDimensional(Asker& asker)
{
    const MessageBox box{.text = "2D Data(Yes) or Array Data(No)?",
                         .title = "Data Type",
                         .buttons = {Button::yes, Button::no},
                         .icon = Icon::question,
                         .beep = true};
    return asker.Message(box) == Button::yes;
}

bool IsTwoDimensionalSet(const VarianValues& values, Asker& asker)
{
    const bool increments = values.array.empty() || values.array == "PHASE";
    if (values.array_rows <= 1) return false;
    // More rows than an array may have, without a parameter that explains them.
    if (increments && values.array_rows > 32) return true;
    return UserSaysTwoDimensional(asker);
}

ProbeAnswer VarianMode2D(VarianValues values)
{
    const bool phase_sensitive = values.array == "PHASE";
    const bool increments = values.array.empty() || phase_sensitive;
    const bool same_nucleus = values.observe == values.decouple || values.decouple == "NUL";
    if (increments && same_nucleus) values.decouple_mhz = values.observe_mhz;
    if (values.observe_mhz <= 0 || values.decouple_mhz <= 0) return Failed();

    // The kind goes by frequency, which a wrong nucleus name does not deceive.
    const double apart = std::fabs(values.observe_mhz - values.decouple_mhz) / values.observe_mhz;
    ProbeAnswer answer = Found({}, false);
    ModeOf2D(phase_sensitive, apart < 0.01, answer.kind_2d);
    int unused = 0;
    answer.mode = increments ? ModeOf2D(phase_sensitive, same_nucleus, unused) : "V2D:";
    answer.mode.pop_back(); // this family's modes stand without the colon
    return answer;
}

} // namespace

ProbeAnswer ReadModeVarian(ByteSpan head, const ProbeContext& context)
{
    const auto parameters = VarianParameters::Parse(head);
    if (!parameters) return Failed();
    VarianValues values = ValuesOf(*parameters, context.nuclides);
    if (!IsTwoDimensionalSet(values, context.asker)) return Found("1D:", false);
    return VarianMode2D(std::move(values));
}

} // namespace nmr
