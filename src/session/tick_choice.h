#pragma once
// How the ppm axis is divided: by itself, or in steps of one's own, which every group of nuclei has.

#include "core/global_block.h"
#include "session/forms.h"

namespace nmr {

/// A step between numbers and the minor intervals in it, for an axis in ppm and for one in Hz or kHz.
struct TickSteps {
    double step_ppm = 1, step_hz = 100;
    int divisions_ppm = 10, divisions_hz = 10;
    bool operator==(const TickSteps&) const = default;
};

/// The steps in use, and those of a nucleus group (NucleusGroup).
TickSteps CurrentTicks(const Settings& settings);
TickSteps GetTickPreset(const Settings& settings, int group);
void SetTickPreset(Settings& settings, int group, const TickSteps& ticks);
/// After a read: the steps of the data's nucleus.
void TakeTickPreset(GlobalBlock& g);

/// Steps that can be drawn: finite, above 0, 1 to 100 divisions.
bool IsUsable(const TickSteps& ticks);

/// As values of a form, each with `prefix` before its name.
void PutTicks(forms::Values& values, const std::string& prefix, const TickSteps& ticks);
TickSteps TakeTicks(const forms::Values& values, const std::string& prefix);

/// The part of NMR1D_Form31 that is about the axis. Values: "TICKS INDIVIDUAL", and "TICKS " with the steps.
struct TickChoice {
    bool individual = false;
    TickSteps steps;

    static TickChoice From(const Settings& settings);
    static TickChoice From(const forms::Values& values);
    void PutInto(forms::Values& values) const;
    /// Steps that can't be drawn change nothing.
    void Apply(Settings& settings) const;
};

} // namespace nmr
