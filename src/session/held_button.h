#pragma once
// The clock of a button that repeats while it is held: one step at once, the next after a pause,
// then a steady run. The form owns the timer and the mouse; this class is told the time.

#include <cstdint>

namespace nmr {

class HeldButton {
public:
    static constexpr std::int64_t kFirstPauseMs = 500;
    static constexpr std::int64_t kRepeatMs = 50;

    /// The mouse button went down: the caller takes its first step now.
    void Press(std::int64_t now_ms)
    {
        held_ = true;
        next_ms_ = now_ms + kFirstPauseMs;
    }
    void Release() { held_ = false; }
    bool held() const { return held_; }

    /// True when one more step is due. A step that took longer than the pause is not made up for:
    /// steps queued behind a slow preview would go on after the button was let go.
    bool Poll(std::int64_t now_ms)
    {
        if (!held_ || now_ms < next_ms_) return false;
        next_ms_ = now_ms + kRepeatMs;
        return true;
    }
    /// Time to wait until the next step can be due, ms; for the form's timer.
    std::int64_t Wait(std::int64_t now_ms) const { return next_ms_ > now_ms ? next_ms_ - now_ms : 0; }

private:
    bool held_ = false;
    std::int64_t next_ms_ = 0;
};

} // namespace nmr
