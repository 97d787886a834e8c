#include "cli/array_writers.h"

#include "core/file_layer.h"

#include <fmt/format.h>

#include <bit>
#include <cstring>

namespace nmr {
namespace {

static_assert(std::endian::native == std::endian::little, "the NumPy head names little-endian values");

struct Axis {
    std::size_t points;
    bool rising;
    std::size_t operator()(std::size_t i) const { return rising ? i : points - 1 - i; }
};

Axis RisingAxis(const DataSet& set)
{
    const auto n = static_cast<std::size_t>(set.par.POINT);
    return {n, n < 2 || set.spec.XAxis[n - 1] >= set.spec.XAxis[0]};
}

std::string NpyHead(std::size_t rows, std::size_t points)
{
    std::string text = fmt::format("{{'descr': '<c8', 'fortran_order': False, 'shape': ({}, {}), }}", rows, points);
    // Magic, version, length and text together fill a multiple of 64 bytes; the text ends with a line feed.
    constexpr std::size_t kFixed = 10;
    text.append((64 - (kFixed + text.size() + 1) % 64) % 64, ' ');
    text += '\n';
    std::string head("\x93NUMPY\x01\x00", 8);
    head += static_cast<char>(text.size() & 0xFF);
    head += static_cast<char>(text.size() >> 8);
    return head + text;
}

} // namespace

Status WriteNpy(const DataSet& set, const std::string& path)
{
    const Axis axis = RisingAxis(set);
    const auto rows = static_cast<std::size_t>(set.RowCount);
    std::string file = NpyHead(rows, axis.points);
    const std::size_t start = file.size();
    file.resize(start + rows * axis.points * 2 * sizeof(float));
    char* out = file.data() + start;
    for (std::size_t row = 0; row < rows; ++row) {
        const auto re = set.spec.DataRe[row], im = set.spec.DataIm[row];
        for (std::size_t i = 0; i < axis.points; ++i, out += 2 * sizeof(float)) {
            std::memcpy(out, &re[axis(i)], sizeof(float));
            std::memcpy(out + sizeof(float), &im[axis(i)], sizeof(float));
        }
    }
    return WriteWholeFile(path, file);
}

Status WriteCsv(const DataSet& set, std::size_t row, const std::optional<std::pair<double, double>>& range_ppm,
                const std::string& path)
{
    const Axis axis = RisingAxis(set);
    const auto re = set.spec.DataRe[row], im = set.spec.DataIm[row];
    fmt::memory_buffer text;
    fmt::format_to(std::back_inserter(text), "ppm,real,imaginary\n");
    for (std::size_t i = 0; i < axis.points; ++i) {
        const double ppm = set.spec.XAxis[axis(i)];
        if (range_ppm && (ppm > range_ppm->first || ppm < range_ppm->second)) continue;
        fmt::format_to(std::back_inserter(text), "{:.9g},{:.9g},{:.9g}\n", ppm, re[axis(i)], im[axis(i)]);
    }
    return WriteWholeFile(path, std::string_view(text.data(), text.size()));
}

} // namespace nmr
