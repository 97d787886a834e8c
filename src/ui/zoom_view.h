#pragma once
// The shown part of an axis and the height of the curve, as the mouse grammar changes them: the same
// in every plot of the program.

#include <algorithm>
#include <cmath>
#include <vector>

namespace nmr {

class ZoomView {
public:
    struct Range {
        double left = 0, right = 1;
        friend bool operator==(const Range&, const Range&) = default;
    };

    /// The whole axis; the zoom starts from it when it changes.
    void SetWhole(Range whole)
    {
        if (whole == whole_) return;
        whole_ = shown_ = whole;
        back_.clear();
    }
    /// The whole axis after one of its ends moved: a zoom stays where it is, as far as it is inside.
    void FollowWhole(Range whole)
    {
        if (back_.empty()) {
            SetWhole(whole);
            return;
        }
        whole_ = back_.front() = whole;
        for (Range& range : back_) range = Inside(range);
        shown_ = Inside(shown_);
        if (shown_.left == shown_.right) ShowAll();
    }
    const Range& shown() const { return shown_; }
    double magnification() const { return magnification_; }
    bool zoomed() const { return !back_.empty(); }

    /// What was set from outside; the way back leads to what was shown before.
    void SetShown(Range range)
    {
        if (range == shown_ || range.left == range.right) return;
        back_.push_back(shown_);
        shown_ = range;
    }
    /// The same as the start of all zooming.
    void StartFrom(Range whole, Range shown)
    {
        whole_ = whole;
        shown_ = shown.left == shown.right ? whole : shown;
        back_.clear();
    }
    const Range& whole() const { return whole_; }
    void SetMagnification(double magnification) { magnification_ = magnification; }

    void ZoomInto(double a, double b)
    {
        back_.push_back(shown_);
        Show(Ordered(a, b));
    }
    void ZoomBack()
    {
        if (back_.empty()) {
            shown_ = whole_;
            return;
        }
        shown_ = back_.back();
        back_.pop_back();
    }
    void ShowAll()
    {
        shown_ = whole_;
        back_.clear();
        magnification_ = 1;
    }
    /// Ctrl + wheel: the position under the cursor stays where it is.
    void ScaleWidth(double position, double factor)
    {
        if (back_.empty()) back_.push_back(shown_);
        Show({position + (shown_.left - position) * factor, position + (shown_.right - position) * factor});
    }
    void Pan(double by)
    {
        const double room_left = whole_.left - shown_.left, room_right = whole_.right - shown_.right;
        // A range that reaches beyond the axis has no room on that side, but is not thrown back either.
        const double d = std::clamp(by, std::min({room_left, room_right, 0.0}), std::max({room_left, room_right, 0.0}));
        shown_.left += d;
        shown_.right += d;
    }
    void ScaleHeight(double factor) { magnification_ = std::clamp(magnification_ * factor, 0.01, 1e7); }

private:
    /// In the direction of the whole axis.
    Range Ordered(double a, double b) const
    {
        const bool falling = whole_.left > whole_.right;
        return falling ? Range{std::max(a, b), std::min(a, b)} : Range{std::min(a, b), std::max(a, b)};
    }
    Range Inside(Range range) const
    {
        const double low = std::min(whole_.left, whole_.right), high = std::max(whole_.left, whole_.right);
        return Ordered(std::clamp(range.left, low, high), std::clamp(range.right, low, high));
    }
    /// Inside the whole axis, and never narrower than a 1e-7 part of it, where doubles would get coarse.
    void Show(Range range)
    {
        range = Inside(range);
        if (std::abs(range.left - range.right) < std::abs(whole_.left - whole_.right) * 1e-7) return;
        shown_ = range;
    }

    Range whole_, shown_;
    std::vector<Range> back_;
    double magnification_ = 1;
};

} // namespace nmr
