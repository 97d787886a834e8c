#pragma once
// The transform as plain loops: what every faster path is held to, bit for bit.

#include "fid/fft.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace nmr::test {

inline void ReferenceButterflies(std::vector<float>& u, std::vector<float>& v, const std::vector<double>& S)
{
    const std::int32_t n = static_cast<std::int32_t>(u.size());
    const std::int32_t s = kSineTableSize / n;
    std::int32_t L = n;
    std::int32_t m = 1;
    while (L > 1) {
        L /= 2;
        std::int32_t base = 0;
        for (std::int32_t repeat = 0; repeat < m; ++repeat) {
            std::size_t p = static_cast<std::size_t>(base);
            std::size_t q = p + static_cast<std::size_t>(L);
            std::size_t iSin = 0;
            std::size_t iCos = kSineTableSize / 4;
            for (std::int32_t j = 1; j <= L; ++j) {
                const double tr = static_cast<double>(u[p]) - static_cast<double>(u[q]);
                const double ti = static_cast<double>(v[p]) - static_cast<double>(v[q]);
                u[p] = static_cast<float>(static_cast<double>(u[q]) + static_cast<double>(u[p]));
                v[p] = static_cast<float>(static_cast<double>(v[q]) + static_cast<double>(v[p]));
                u[q] = static_cast<float>(ti * S[iSin] + tr * S[iCos]);
                v[q] = static_cast<float>(ti * S[iCos] - tr * S[iSin]);
                iSin += static_cast<std::size_t>(s * m);
                iCos += static_cast<std::size_t>(s * m);
                ++p;
                ++q;
            }
            base += 2 * L;
        }
        m *= 2;
    }
}

inline void ReferenceBitReversal(std::vector<float>& u, std::vector<float>& v)
{
    const std::int32_t n = static_cast<std::int32_t>(u.size());
    std::int32_t j = n / 2;
    for (std::int32_t i = 1; i < n; ++i) {
        if (j < i) {
            std::swap(u[static_cast<std::size_t>(i)], u[static_cast<std::size_t>(j)]);
            std::swap(v[static_cast<std::size_t>(i)], v[static_cast<std::size_t>(j)]);
        }
        std::int32_t k = n;
        for (;;) {
            k /= 2;
            if (k < 1) break;
            if (j < k) {
                j += k;
                break;
            }
            j -= k;
        }
    }
}

inline void ReferenceTransform(std::vector<float>& u, std::vector<float>& v, const std::vector<double>& S)
{
    ReferenceButterflies(u, v, S);
    ReferenceBitReversal(u, v);
}

} // namespace nmr::test
