#pragma once
// A read through detection and registry, and the strongest line of what was read by a transform of the
// tests' own.

#include "core/numbers.h"
#include "core/quiet_answers.h"
#include "formats/detect.h"
#include "formats/registry.h"
#include "support/files.h"

#include <bit>
#include <cmath>
#include <complex>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nmr::test {

/// Array questions are answered "No", which means rows of one dimension.
struct AnyRead {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>(); // large, so on the heap
    QuietAnswers asker{Button::no};
    FileType type;
    Status status;

    explicit AnyRead(const std::filesystem::path& path)
    {
        g->nuclides = NuclearTable::BuiltIn();
        type = ReadFileType(path.string(), asker, g->nuclides);
        const FormatRow* row = FindFormat(FamilyOf(type.code));
        if (type.code <= 0)
            status = Error{ErrorCode::not_nmr, "", "no family has it"};
        else
            status = row->read({*g, asker, type, 0});
    }
    DataSet& set() { return g->Slots[0]; }
    const DataSet& set() const { return g->Slots[0]; }
    const ParamBlock& par() const { return set().par; }
    bool Warned(std::string_view part) const
    {
        return std::ranges::any_of(set().Warnings,
                                   [&](const std::string& w) { return w.find(part) != std::string::npos; });
    }
};

inline void PlainTransform(std::vector<std::complex<double>>& z)
{
    const std::size_t n = z.size();
    if (n < 2) return;
    std::vector<std::complex<double>> even, odd;
    for (std::size_t i = 0; i < n; ++i) (i % 2 == 0 ? even : odd).push_back(z[i]);
    PlainTransform(even);
    PlainTransform(odd);
    for (std::size_t k = 0; k < n / 2; ++k) {
        const auto turned = std::polar(1.0, -2 * kPi * static_cast<double>(k) / static_cast<double>(n)) * odd[k];
        z[k] = even[k] + turned;
        z[k + n / 2] = even[k] - turned;
    }
}

/// Place and height of the largest magnitude of a row, zero filled to twice the next power of two,
/// without a window. The place follows from the frequencies of carrier and reference alone.
inline std::pair<double, double> StrongestLine(const DataSet& set, std::size_t row, FidSense sense)
{
    const auto points = static_cast<std::size_t>(set.par.FIDPoints);
    const double sign = sense == FidSense::as_transformed ? -1 : 1;
    std::vector<std::complex<double>> z(2 * std::bit_ceil(points));
    for (std::size_t i = 0; i < points; ++i) z[i] = {set.spec.DataRe[row][i], sign * set.spec.DataIm[row][i]};
    PlainTransform(z);
    const auto top = std::ranges::max_element(z, {}, [](const auto& value) { return std::norm(value); });
    const auto n = static_cast<double>(z.size());
    double turns = static_cast<double>(top - z.begin()) / n;
    if (turns >= 0.5) turns -= 1;
    const double zero = set.par.FileRefMHz > 0 ? set.par.FileRefMHz : set.par.ObsCenter;
    return {((set.par.ObsCenter - zero) * 1e6 + turns * static_cast<double>(set.par.FREQU)) / zero, std::abs(*top)};
}

} // namespace nmr::test
