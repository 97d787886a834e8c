#pragma once
// What NMR1D_Form11 ("FFT & Phase") knows and may do, without the form. Every change of a control
// re-runs the preview; the form repaints from slot 0 and WindowCurve afterwards.

#include "analysis/phase.h"
#include "core/asker.h"
#include "core/global_block.h"
#include "fid/window.h"

#include <functional>
#include <optional>
#include <string>

namespace nmr {

class FftForm {
public:
    FftForm(GlobalBlock& g, Asker& asker) : g_(g), asker_(asker) {}

    /// Initial zero fill, shift, window and one preview; called once before the form shows. A window that
    /// the data's own parameters make impossible is reported and leaves the form usable.
    Status Open();

    void Command2_Click(); ///< preview, then the automatic phase or the present phases
    Status Command1();     ///< "ZeroFill": doubles
    Status Command4();     ///< "Non ZeroFill"
    Status SetZeroFill(std::int32_t factor);
    Status SetWindowKind(WindowKind kind);
    /// After a change of a window field: curve and preview anew.
    Status WindowChanged();
    void SetShift(std::int32_t points);
    void SetPhase0(double deg); ///< clamped to -360..360
    void SetPhase1(double deg); ///< clamped to -1800..1800
    void AddPhase0(double deg) { SetPhase0(static_cast<double>(g_.Phase0Deg) + deg); }
    void AddPhase1(double deg) { SetPhase1(static_cast<double>(g_.Phase1Deg) + deg); }
    void SetPivot(std::int32_t point);  ///< "PP" dragged: the look of the spectrum does not change
    void SetSecond(std::int32_t point); ///< "P2"
    void Command8();                    ///< "Auto"
    void Command7();                    ///< "Semi Auto"
    void AutoRobust();                  ///< "Auto (robust)"
    /// Of the last robust phase, percent; nothing when the present phases are others.
    std::optional<double> quality() const { return quality_; }
    void SetRow(std::int16_t row);
    /// Check2 "Auto Phase correction": whether Command2_Click phases anew after each transform.
    bool auto_phase() const;
    void SetAutoPhase(bool on);
    /// Which automatic phase that is; kept for the next FIDs.
    bool robust() const { return g_.settings.robust_phase == 1; }
    void SetRobust(bool on);

    // What the vendor's files tell, one thing at a time and without a preview; false when they tell nothing
    // that fits. Open takes all of them when the setting VENDOR START is 1.
    bool TakeVendorSize();
    bool TakeVendorWindow();
    bool TakeVendorShift();
    /// The shift alone, where the head of the FID lacks more points than any phase could make up for.
    bool TakeMissingPoints();
    bool TakeVendorPhase(); ///< for the present shift; automatic phasing is off from then on
    /// Whether Open takes them, and whether this FID has any.
    bool vendor_start() const { return g_.settings.vendor_start == 1; }
    bool has_vendor_values() const;
    /// Changes the setting and starts the form over with it: fill, window, shift and phase.
    Status SetVendorStart(bool on);

    /// "Complete": commits all rows. DialogResult becomes "OK".
    Status Command3(const std::function<void(int)>& progress = {});
    /// "Close (Discard Present Data)": asks "Exit without FFT"; true when the form may close, with
    /// DialogResult "CANCEL".
    bool Close();

    std::int32_t points() const { return g_.Slots[0].par.POINT; }
    /// First-order phase that the group delay leaves at the present shift; 0 when it tells none.
    double known_phase1() const;
    /// The operator of the transform, who stands in FFTUser and the history; empty for the user of the run.
    void SetUser(const std::string& name) { user_ = name; }
    const std::string& user() const { return user_; }
    bool can_transform_again() const { return !g_.NoFIDFile; }
    GlobalBlock& block() { return g_; }
    Asker& asker() { return asker_; }

private:
    Status StartOver();
    void RunAutoPhase(PhaseMode mode);
    void PhaseAfterTransform();
    void RotateShownRow();
    void RecordTransform();

    GlobalBlock& g_;
    Asker& asker_;
    // The first-order phase that the group delay leaves behind, and the shift it belongs to.
    float delay_phase1_deg_ = 0.0F;
    std::int32_t delay_shift_ = 0;
    std::string user_;
    ParamBlock opened_; // as the reader left it
    std::optional<double> quality_;
    std::optional<bool> auto_phase_here_; // in place of the setting, for this FID
};

} // namespace nmr
