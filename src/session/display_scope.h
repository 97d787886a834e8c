#pragma once
// What part of a spectrum is shown and how tall: the logic of "Change of Display Scope", of the
// default areas behind it, of the grid form, and of the height buttons.

#include "core/global_block.h"
#include "layout/plot.h"
#include "session/forms.h"
#include "session/tick_choice.h"

#include <array>

namespace nmr {

/// A range on the display; left is the larger end.
struct ShownRange {
    double left = 0, right = 0;
};
enum class ScopeEdge { left, right };

inline constexpr int kPresetCount = 4;

/// Preset n (1 to 4) of a nucleus group (NucleusGroup) in ppm, or in Hz for hz and khz.
ShownRange GetPreset(const Settings& settings, int group, int n, XUnit unit);
void SetPreset(Settings& settings, int group, int n, XUnit unit, const ShownRange& range);

/// NMR1D_Form31. The range is kept in ppm; the other units are looked through Hz per ppm.
class DisplayScope {
public:
    explicit DisplayScope(const GlobalBlock& g);
    explicit DisplayScope(const forms::Values& values);
    forms::Values ToValues() const;

    double Get(ScopeEdge edge, XUnit unit) const;
    /// Changes one end, and with it what Get gives in every unit. False for what is no finite number,
    /// or for Hz and kHz while the data have no frequency.
    bool Set(ScopeEdge edge, XUnit unit, double value);

    /// "Set Default Value": the range becomes preset 1 of the nucleus.
    void SetDefaultValue();
    /// Preset n into the range: 1 the default, 2 and 3 behind "Set Default Value-1" and "-2". The Hz
    /// presets are taken while the display is in Hz or kHz.
    void TakePreset(int n);

    /// The same range with the presets as the settings now have them.
    DisplayScope WithPresetsOf(const GlobalBlock& g) const;

    XUnit unit() const { return unit_; }
    bool IsUsable() const; ///< two different finite ends
    /// Into ViewLeft and ViewRight, the larger end left, and a changed preset 1 into the settings.
    /// @return bad_value when the range is not usable; nothing has changed then
    Status Apply(GlobalBlock& g) const;

private:
    double HzPerUnit(XUnit unit) const;
    ShownRange range_;
    double hz_per_ppm_ = 0;
    XUnit unit_ = XUnit::ppm;
    std::array<ShownRange, kPresetCount> presets_ppm_{}, presets_hz_{};
    bool default_changed_ = false;
};

/// NMR1D_Form34: all presets, by nucleus group, unit and number, and the divisions of the axis of each group.
class DefaultAreas {
public:
    explicit DefaultAreas(const Settings& settings);
    explicit DefaultAreas(const forms::Values& values);
    forms::Values ToValues() const;
    ShownRange Get(int group, XUnit unit, int n) const { return At(group, unit, n); }
    bool Set(int group, XUnit unit, int n, ScopeEdge edge, double value);
    TickSteps& Ticks(int group) { return ticks_.at(static_cast<std::size_t>(group)); }
    /// Ranges with equal ends, and steps that can't be drawn, keep what the settings have.
    void Apply(Settings& settings) const;

private:
    const ShownRange& At(int group, XUnit unit, int n) const;
    std::array<ShownRange, 3 * 2 * kPresetCount> ranges_{};
    std::array<TickSteps, 3> ticks_{};
};

/// NMR1D_Form33.
struct GridChoice {
    double x_inc_ppm = 1, x_inc_hz = 100, y_inc = 0.5;
    bool x_auto = true, y_auto = true, shown = false;
    double width = 1;

    static GridChoice From(const Settings& settings);
    static GridChoice From(const forms::Values& values);
    forms::Values ToValues() const;
    /// @return bad_value unless steps and width are above 0 and finite; nothing has changed then
    Status Apply(Settings& settings) const;
};

/// Shown range in Hz from the one in ppm, by the frequency that the data were first read with.
void UpdateShownHz(GlobalBlock& g);
/// Lowest and highest ppm of the slot's axis, whatever its direction; both 0 without points.
ShownRange AxisEnds(const DataSet& set);

/// Intensity that fills the plot's height: the largest magnitude of a transform, or the highest
/// value of a spectrum as read, over the share of the height that it is to take. Above 0.
double FullScale(const DataSet& set);
/// What BasicText1 shows: 1 after a read, growing as the peaks are drawn taller.
double Magnification(const DataSet& set);
void SetMagnification(DataSet& set, double magnification);
/// BasicYMag_Up and BasicYMag_Down: peaks taller or lower by one step.
inline constexpr double kMagnificationStep = 1.25;
void BasicYMag_Up(DataSet& set);
void BasicYMag_Down(DataSet& set);

} // namespace nmr
