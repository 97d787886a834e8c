#pragma once
// Small made-up data sets of Varian, CMX and JEOL Delta, whole enough to be read.

#include "samples/family_samples.h"

#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace nmr::test {

/// One decaying line; re - i im turns to higher frequency, as these two vendors store it.
inline std::array<double, 2> LinePoint(int i, double turns_per_point, int points, double height = 1e4)
{
    const double angle = 2 * 3.14159265358979323846 * turns_per_point * i;
    const double size = height * std::exp(-3.0 * i / points);
    return {size * std::cos(angle), -size * std::sin(angle)};
}

// --- Varian

struct VarianValue {
    std::string name;
    std::vector<std::string> values; ///< a text begins with a quote
    int subtype = 1;
    bool active = true;
};

inline std::string ProcparOf(const std::vector<VarianValue>& values)
{
    std::string out;
    for (const VarianValue& v : values) {
        const bool text = !v.values.empty() && v.values.front().starts_with('"');
        out += v.name + " " + std::to_string(v.subtype) + (text ? " 2" : " 1") + " 9 0 0 2 1 0 " +
               (v.active ? "1" : "0") + " 64\n" + std::to_string(v.values.size());
        for (const std::string& value : v.values) out += " " + value + (text ? "\n" : "");
        out += text ? "0\n" : " \n0 \n";
    }
    return out;
}

/// A set at 400 MHz, 4000 Hz wide, whose centre stands at 5 ppm. What `changes` names is put in place
/// of the usual values, or added.
inline std::string SampleProcpar(const std::vector<VarianValue>& changes = {})
{
    std::vector<VarianValue> values{{"array", {"\"\""}, 2},
                                    {"arraydim", {"1"}, 7},
                                    {"date", {"\"Jun  6 2007\""}, 2},
                                    {"dn", {"\"C13\""}, 2},
                                    {"nt", {"8"}, 7},
                                    {"pw", {"7.5"}, 6},
                                    {"reffrq", {"400"}},
                                    {"rfl", {"0"}},
                                    {"rfp", {"0"}},
                                    {"sfrq", {"400.002"}},
                                    {"solvent", {"\"cdcl3\""}, 2},
                                    {"time_submitted", {"\"20070606T101530\""}, 2},
                                    {"tn", {"\"H1\""}, 2},
                                    {"np", {"32"}, 7},
                                    {"sw", {"4000"}}};
    for (const VarianValue& change : changes) {
        const auto same =
            std::find_if(values.begin(), values.end(), [&](const auto& v) { return v.name == change.name; });
        if (same == values.end())
            values.insert(values.begin(), change);
        else
            *same = change;
    }
    return ProcparOf(values);
}

enum class VarianWord { i16 = 0x41, i32 = 0x45, f32 = 0x49 };

struct VarianSample {
    VarianWord word = VarianWord::i32;
    int blocks = 1, points = 16;
    int status = -1; ///< of the file; -1: as the numbers are
    int heads = 1;   ///< before each block
    int padding = 0; ///< bytes behind each block
    bool complex = true;
    std::function<std::array<double, 2>(int row, int point)> value = [](int row, int i) {
        return LinePoint(i, 0.125, 16, 1e4 / (row + 1));
    };
};

inline void PutVarianValue(Image& file, std::size_t& at, VarianWord word, double value)
{
    const auto rounded = static_cast<std::int64_t>(std::lround(value));
    const std::uint64_t bits = word == VarianWord::f32 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                                                       : static_cast<std::uint64_t>(rounded);
    const std::size_t width = word == VarianWord::i16 ? 2 : 4;
    file.Big(at, bits, width);
    at += width;
}

inline Image VarianFile(const VarianSample& s = {})
{
    const int width = s.word == VarianWord::i16 ? 2 : 4;
    const int values = s.points * (s.complex ? 2 : 1);
    const int block = s.heads * 28 + values * width + s.padding;
    Image file;
    const int head[] = {s.blocks, 1, values, width, values * width, block};
    for (std::size_t i = 0; i < 6; ++i) file.Big(4 * i, static_cast<std::uint64_t>(head[i]), 4);
    file.Big(26, static_cast<std::uint64_t>(s.status < 0 ? static_cast<int>(s.word) : s.status), 2);
    file.Big(28, static_cast<std::uint64_t>(s.heads), 4);
    for (int row = 0; row < s.blocks; ++row) {
        std::size_t at = 32 + static_cast<std::size_t>(row * block + s.heads * 28);
        for (int i = 0; i < s.points; ++i) {
            const auto pair = s.value(row, i);
            PutVarianValue(file, at, s.word, pair[0]);
            if (s.complex) PutVarianValue(file, at, s.word, pair[1]);
        }
        if (s.padding > 0) file.Byte(at + static_cast<std::size_t>(s.padding) - 1, 0);
    }
    return file;
}

// --- CMX

inline std::string SampleAcq(std::string_view more = "")
{
    return "ppfn=1pulse\nch1=2\nch2=1\nsf1=50.3075\nsf2=300.13\npw90X=0.0000028s\nrd=4u\ndw=0.00025s\nsw=4.0\n" +
           std::string(more) + "pd=5.0s\nna=4\nrg=50.0\nal=16\n";
}
inline std::string SampleProc(std::string_view more = "")
{
    return "com=a comment\nrmv1=10.0\nrmvunits1=1\nrmp1=300.132\n" + std::string(more) + "datatype=0\ndomain1=0\n";
}
/// All real values, then all imaginary ones.
inline Image CmxData(int points = 16, int rows = 1)
{
    Image file;
    const auto put = [&](int part, int row, int i) {
        const auto value = std::lround(LinePoint(i, 0.125, points, 1e4 / (row + 1))[static_cast<std::size_t>(part)]);
        file.Big(static_cast<std::size_t>(4 * ((part * rows + row) * points + i)), static_cast<std::uint64_t>(value),
                 4);
    };
    for (int part = 0; part < 2; ++part)
        for (int row = 0; row < rows; ++row)
            for (int i = 0; i < points; ++i) put(part, row, i);
    return file;
}

// --- JEOL Delta

struct DeltaValue {
    std::string name;
    double number = 0;
    unsigned prefix = 1, unit = 0;
    std::string text = {};
    int type = 2; ///< 0 text, 1 integer, 2 float
};
inline DeltaValue DeltaText(std::string name, std::string text)
{
    return {std::move(name), 0, 1, 0, std::move(text), 0};
}

struct DeltaSet {
    bool little = true;
    unsigned axis_type = 3, prefix = 1, unit = 28;
    bool float32 = false;
    std::uint32_t stored = 16, first = 0, last = 15;
    double start = 0, stop = 15.0 / 4000;
    std::string nucleus = "Proton";
    double base_mhz = 400;
    std::vector<DeltaValue> values{{"X_FREQ", 400e6, 1, 13},      {"X_SWEEP", 4, 241, 13},
                                   {"X_OFFSET", 5, 1, 26},        DeltaText("X_DOMAIN", "1H"),
                                   {"X_POINTS", 16, 1, 0, {}, 1}, DeltaText("experiment", "single_pulse.jxp")};
    std::function<std::array<double, 2>(int point)> value = [](int i) { return LinePoint(i, 0.125, 16); };
};
inline constexpr std::size_t kSampleDeltaData = 4096;

inline Image DeltaSetFile(const DeltaSet& s = {})
{
    Image file(kSampleDeltaData);
    const auto head = [&](std::size_t at, std::uint64_t value) { file.Big(at, value, 4); };
    const auto head64 = [&](std::size_t at, double value) { file.Big(at, std::bit_cast<std::uint64_t>(value), 8); };
    const auto put = [&](std::size_t at, std::uint64_t value, std::size_t width) {
        s.little ? file.Little(at, value, width) : file.Big(at, value, width);
    };
    const std::size_t width = s.float32 ? 4 : 8;
    const std::size_t sections = s.axis_type == 1 ? 1 : 2;
    file.Text(0, "JEOL.NMR").Byte(8, s.little ? 1 : 0).Byte(12, 1).Byte(14, s.float32 ? 0x41 : 0x01);
    file.Byte(24, s.axis_type).Byte(32, s.prefix).Byte(33, s.unit);
    file.Text(48, "a title").Text(552, "operator").Text(680, "a comment").Text(808, s.nucleus);
    head(176, s.stored);
    head(180, 1);
    head(208, s.first);
    head(240, s.last);
    head64(272, s.start);
    head64(336, s.stop);
    head64(1064, s.base_mhz);
    head(1212, 1360);
    head(1216, 16 + 64 * s.values.size());
    head(1284, kSampleDeltaData);
    head(1292, sections * s.stored * width);
    put(1360, 64, 4);
    put(1368, s.values.size() - 1, 4);
    for (std::size_t i = 0; i < s.values.size(); ++i) {
        const DeltaValue& v = s.values[i];
        const std::size_t at = 1376 + 64 * i;
        file.Byte(at + 6, v.prefix).Byte(at + 7, v.unit).Text(at + 36, v.name + std::string(28 - v.name.size(), ' '));
        put(at + 32, static_cast<std::uint64_t>(v.type), 4);
        if (v.type == 0) file.Text(at + 16, v.text + std::string(16 - v.text.size(), ' '));
        if (v.type == 1) put(at + 16, static_cast<std::uint64_t>(std::lround(v.number)), 4);
        if (v.type == 2) put(at + 16, std::bit_cast<std::uint64_t>(v.number), 8);
    }
    for (std::size_t section = 0; section < sections; ++section)
        for (std::size_t i = 0; i < s.stored; ++i) {
            const double value = s.value(static_cast<int>(i))[section];
            put(kSampleDeltaData + (section * s.stored + i) * width,
                s.float32 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                          : std::bit_cast<std::uint64_t>(value),
                width);
        }
    return file;
}

} // namespace nmr::test
