#include "session/held_button.h"

#include <gtest/gtest.h>

#include <vector>

namespace nmr {
namespace {

TEST(HeldButton, StepsAfterAPauseThenSteadilyAndNeverCatchesUp)
{
    struct Case {
        const char* name;
        std::vector<std::int64_t> polled; ///< ms after the press
        std::vector<std::int64_t> steps;  ///< the ones that are due
    };
    const Case cases[] = {
        {"a click", {10, 200, 499}, {}},
        {"held", {499, 500, 520, 549, 550, 600}, {500, 550, 600}},
        {"a slow preview takes 400 ms", {500, 900, 920, 950}, {500, 900, 950}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HeldButton button;
        constexpr std::int64_t kStart = 123456;
        button.Press(kStart);
        std::vector<std::int64_t> steps;
        for (const std::int64_t at : c.polled)
            if (button.Poll(kStart + at)) steps.push_back(at);
        EXPECT_EQ(steps, c.steps);
    }
}

TEST(HeldButton, ReleaseEndsIt)
{
    HeldButton button;
    EXPECT_FALSE(button.Poll(10'000));
    button.Press(0);
    EXPECT_EQ(button.Wait(100), 400);
    EXPECT_TRUE(button.Poll(500));
    EXPECT_EQ(button.Wait(510), 40);
    button.Release();
    EXPECT_FALSE(button.Poll(10'000));
}

} // namespace
} // namespace nmr
