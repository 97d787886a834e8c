#pragma once
// The two plots of the transform form: the FID with its window above, the spectrum below.

#include "session/fft_form.h"
#include "ui/zoom_panel.h"

#include <functional>
#include <span>

namespace nmr {

/// A row as it was at the last Refresh. A message box may let the plots paint while a new length has moved
/// the rows and the form hasn't come to refresh them: what is gone is not drawn then.
class SeenRow {
public:
    void Build(std::span<const float> row)
    {
        row_ = row;
        pyramid_.Build(row);
    }
    std::size_t size() const { return row_.size(); }
    MinMaxPyramid::Range Limits() const { return row_.empty() ? MinMaxPyramid::Range{} : pyramid_.Over(0, size() - 1); }
    /// @param now  the row where it stands now
    void Draw(Canvas& canvas, const PlotFrame& frame, std::span<const float> now, double first, double step,
              const Pen& pen) const
    {
        if (now.data() == row_.data() && now.size() >= size())
            DrawCurve(canvas, frame, pyramid_, row_, first, step, pen);
    }

private:
    std::span<const float> row_;
    MinMaxPyramid pyramid_;
};

/// FID of the shown row over time, with the window curve. What a shift cuts off stands left of zero.
class FidPanel : public ZoomPanel {
public:
    explicit FidPanel(FftForm& logic, QWidget* parent = nullptr) : ZoomPanel(parent), logic_(logic) {}
    /// After a change of FID, window or shift.
    void Refresh();

protected:
    PlotFrame Frame(QtCanvas& canvas) override;
    void Draw(QtCanvas& canvas, const PlotFrame& frame) override;

private:
    double Dwell() const;
    AxisStyle Style() const;
    FftForm& logic_;
    SeenRow re_, im_, window_;
    double full_ = 1;
};

/// Spectrum of the shown row, with the marks "PP" and "P2" to drag. While there is no second mark,
/// its name stands in the right corner, from where it is dragged in.
class PreviewPanel : public ZoomPanel {
public:
    explicit PreviewPanel(FftForm& logic, QWidget* parent = nullptr) : ZoomPanel(parent), logic_(logic) {}
    void Refresh();
    bool show_imaginary = false;
    std::function<void()> mark_moved;
    std::function<void()> mark_dropped;

protected:
    PlotFrame Frame(QtCanvas& canvas) override;
    void Draw(QtCanvas& canvas, const PlotFrame& frame) override;
    bool GrabMark(double x) override;
    void MoveMark(double x) override;
    void DropMark() override;
    bool MarkUnder(double x) const override { return NearestMark({x, cursor_y()}) != Mark::none; }

private:
    enum class Mark { none, pivot, second };
    /// The axis as the commit is going to set it, when the file tells its reference; else ppm from the carrier.
    struct Axis {
        double first = 0, step = 1, hz_per_ppm = 1;
        bool referenced = false;
    };
    Axis PreviewAxis() const;
    AxisStyle Style() const;
    Mark NearestMark(PointD at) const;
    double PointX(const PlotFrame& frame, std::int32_t point) const;
    double SecondX(const PlotFrame& frame) const;
    void DrawMarks(QtCanvas& canvas, const PlotFrame& frame) const;

    /// Share of the full height that is kept below zero: in steps, so that the plot stands still while
    /// a phase is turned, and so large that upside-down lines are whole.
    double LowShare() const;
    double low_share_ = 0.25;
    FftForm& logic_;
    SeenRow re_, im_;
    Mark grabbed_ = Mark::none;
};

} // namespace nmr
