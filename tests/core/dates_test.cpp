#include "core/dates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>

using namespace nmr;

namespace {

DateTime At(std::int32_t serial, int hour = 0, int minute = 0, double second = 0)
{
    return {serial, (hour * 3600 + minute * 60 + second) / 86400.0};
}

} // namespace

// Day numbers from outside: 25569 is 1970-01-01, 36526 2000-01-01 and 44197 2021-01-01 in every
// spreadsheet that counts from 30 Dec 1899.
TEST(Dates, PatternsPrintDayAndTime)
{
    struct Case {
        const char* pattern;
        DateTime when;
        const char* text;
    };
    const Case cases[] = {
        {"dd/mmm/yyyy hh:nn:ss", At(44228, 15, 24, 11), "01/Feb/2021 15:24:11"},
        {"yyyy_mm_dd", At(36526), "2000_01_01"},
        {"yyyy-mm-dd", At(kUnixEpochSerial), "1970-01-01"},
        {"yyyy-mm-dd", At(kDeltaEpochSerial), "1990-01-01"},
        {"ddd", At(44228), "Mon"},
        {"ddd", At(0), "Sat"},
        {"yyyy/mm/dd", At(0), "1899/12/30"},
        {"yyyy/mm/dd", At(36584), "2000/02/28"},
        {"yyyy/mm/dd", At(36585), "2000/02/29"},
        {"hh:nn:ss", At(0, 23, 59, 59.4), "23:59:59"},
        {"dd hh:nn:ss", At(44228, 23, 59, 59.6), "02 00:00:00"},
        {"yyyy/mmm/dd,", At(44561), "2021/Dec/31,"},
        {"yyyy", {INT32_MAX, 0}, "9999"},
        {"hh", {0, std::nan("")}, "00"},
    };
    for (const Case& c : cases) EXPECT_EQ(FormatDate(c.pattern, c.when), c.text) << c.pattern;
}

TEST(Dates, ReadsWhatInstrumentsWrite)
{
    struct Case {
        const char* text;
        const char* date; ///< empty: no date
    };
    const Case cases[] = {
        {"01/Feb/2021 15:24:11", "2021-02-01 15:24:11"},
        {"01/FEB/2021  15:24:11", "2021-02-01 15:24:11"},
        {"1-feb-2021", "2021-02-01 00:00:00"},
        {"01-Feb-99", "1999-02-01 00:00:00"},
        {"2021/02/01 15:24:11", "2021-02-01 15:24:11"},
        {"2021/Feb/01", "2021-02-01 00:00:00"},
        {"2021-02-01", "2021-02-01 00:00:00"},
        {"2021-02-01T15:24:11", "2021-02-01 15:24:11"},
        {"2021-02-01 15:24:11.250 +0100", "2021-02-01 15:24:11"},
        {"Feb 1 2021", "2021-02-01 00:00:00"},
        {"February 01, 2021", "2021-02-01 00:00:00"},
        {"20210201T152411", "2021-02-01 15:24:11"},
        {"20210201", "2021-02-01 00:00:00"},
        {"Mon Feb 01 15:24:11 2021", "2021-02-01 15:24:11"},
        {"Mon Feb  1 15:24:11 CET 2021", "2021-02-01 15:24:11"},
        {"2021/02/01 3:24 PM", "2021-02-01 15:24:00"},
        {"2021/02/01 12:24 AM", "2021-02-01 00:24:00"},
        {"29/Feb/2000", "2000-02-29 00:00:00"},
        {"29/Feb/2001", ""},
        {"2021/13/01", ""},
        {"2021/02/01 24:00:00", ""},
        {"2021/02/01 15:60:00", ""},
        {"20211301", ""},
        {"20210201T1524", ""},
        {"01/02/2021", ""}, // day or month first: nobody knows
        {"Feb Mar 2021", ""},
        {"2021", ""},
        {"", ""},
        {"no date 1 of 2021", ""},
        {"99999999999999999999/01/01", ""},
        {"12:00:00", ""},
    };
    for (const Case& c : cases) {
        const auto when = Parse_DateTime(c.text);
        EXPECT_EQ(when ? FormatDate("yyyy-mm-dd hh:nn:ss", *when) : "", c.date) << c.text;
    }
}

TEST(Dates, EveryDayComesBackThroughItsText)
{
    for (std::int32_t serial = -40000; serial < 200000; serial += 173) {
        const DateTime when = At(serial, 13, 5, 59);
        for (const char* pattern :
             {"dd/mmm/yyyy hh:nn:ss", "yyyy/mm/dd hh:nn:ss", "yyyymmddThhnnss", "ddd mmm dd hh:nn:ss yyyy"}) {
            const auto back = Parse_DateTime(FormatDate(pattern, when));
            ASSERT_TRUE(back) << FormatDate(pattern, when);
            EXPECT_EQ(back->serial, serial);
            EXPECT_NEAR(back->fraction_of_day, when.fraction_of_day, 1e-9);
        }
    }
}

TEST(Dates, SecondsSince1970AgreeWithTheSystemsCalendar)
{
    for (const std::int64_t seconds : {0LL, 86399LL, 1612193051LL, -1LL, 951782400LL, 4102444799LL}) {
        const auto time = static_cast<std::time_t>(seconds);
        std::tm utc{};
        gmtime_r(&time, &utc);
        char text[40];
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &utc);
        EXPECT_EQ(FormatDate("yyyy-mm-dd hh:nn:ss", FromUnixSeconds(static_cast<double>(seconds))), text);
    }
    for (const double wild : {1e300, -1e300, std::nan("")}) {
        const DateTime when = FromUnixSeconds(wild);
        EXPECT_GE(when.fraction_of_day, 0.0);
        EXPECT_LT(when.fraction_of_day, 1.0);
    }
}
