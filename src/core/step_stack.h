#pragma once
// A bounded stack of steps that can be taken back and done again. The main form, its point tool and
// every form with an undo of its own use it, each with its own kind of step.

#include <cstddef>
#include <deque>
#include <utility>

namespace nmr {

inline constexpr std::size_t kUndoDepth = 20;

/// A step holds the values that are not the live ones. To exchange the two is to take the step back,
/// and to exchange them again is to do it again, so no second copy can go stale.
template <class Step>
class StepStack {
public:
    /// The step becomes the newest; beyond kUndoDepth the oldest is dropped.
    /// @return what could have been done again, which is lost now
    std::deque<Step> Push(Step step)
    {
        steps_.push_front(std::move(step));
        if (steps_.size() > kUndoDepth) steps_.pop_back();
        return std::exchange(undone_, {});
    }

    /// Takes the newest step back. `exchange` gets it and answers whether it can be done again; the
    /// step leaves the stack in either case. False when there is none.
    template <class Exchange>
    bool Undo(Exchange&& exchange)
    {
        return Move(steps_, undone_, exchange);
    }
    template <class Exchange>
    bool Redo(Exchange&& exchange)
    {
        return Move(undone_, steps_, exchange);
    }

    /// nullptr when nothing can be taken back, or done again.
    const Step* newest() const { return steps_.empty() ? nullptr : &steps_.front(); }
    const Step* next_redo() const { return undone_.empty() ? nullptr : &undone_.front(); }
    Step* newest() { return steps_.empty() ? nullptr : &steps_.front(); }
    std::size_t size() const { return steps_.size(); }

    template <class Act>
    void ForEach(Act&& act)
    {
        for (Step& step : steps_) act(step);
        for (Step& step : undone_) act(step);
    }
    void Clear()
    {
        steps_.clear();
        undone_.clear();
    }

private:
    template <class Exchange>
    static bool Move(std::deque<Step>& from, std::deque<Step>& to, Exchange& exchange)
    {
        if (from.empty()) return false;
        Step step = std::move(from.front());
        from.pop_front();
        if (exchange(step)) to.push_front(std::move(step));
        return true;
    }

    std::deque<Step> steps_;  ///< newest first
    std::deque<Step> undone_; ///< the last one taken back first
};

} // namespace nmr
