#pragma once
// The probes of the families: each looks at the bytes of a file (or of its parameter file) and says
// what the data set is. They work on bytes, not on paths, so that any input can be tried on them.

#include "core/asker.h"
#include "core/nuclear_table.h"
#include "formats/data_conversion.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

inline constexpr std::uint16_t kNoSpectrumFlag = 65535;

/// The answer of a probe.
struct ProbeAnswer {
    int status = -1;                               ///< 0 when the file is of the family
    std::string mode;                              ///< "1D:zg30", "VPH_HOMO:cosy"; empty after a failure
    std::uint16_t spectrum_flag = kNoSpectrumFlag; ///< 1 spectrum, 0 FID
    int kind_2d = -1;                              ///< as in FileType
    int acq_mode = 2;                              ///< as in FileType
    int byte_order = 0;                            ///< 1 big-endian
    /// The answer needs bytes behind the last one given: to be asked again with more of the file.
    bool needs_more = false;
};

/// What a probe may ask.
struct ProbeContext {
    Asker& asker;
    const NuclearTable& nuclides;
};

/// @param head  the first bytes of the file, or all of it; a parameter file is always given whole
using ProbeFunction = ProbeAnswer (*)(ByteSpan head, const ProbeContext& context);

ProbeAnswer ReadModeAls(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeEX(ByteSpan head, const ProbeContext& context); ///< of the ".gxp" header
ProbeAnswer ReadModeLambda(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeECP(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeBruker(ByteSpan head, const ProbeContext& context);     ///< of acqus
ProbeAnswer ReadModeBrukerProc(ByteSpan head, const ProbeContext& context); ///< of procs
ProbeAnswer ReadModeAlpha(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeVarian(ByteSpan head, const ProbeContext& context); ///< of procpar or curpar
ProbeAnswer ReadModeNut(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeCMX(ByteSpan head, const ProbeContext& context);     ///< of acq
ProbeAnswer ReadModeGEOmega(ByteSpan head, const ProbeContext& context); ///< of the ".HED" header
ProbeAnswer ReadModeTavo3(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeTavo4(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeJCAMP(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeCSV(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeMSL(ByteSpan head, const ProbeContext& context);
ProbeAnswer ReadModeMac(ByteSpan head, const ProbeContext& context);

struct ProbeRow {
    std::string_view name; ///< for messages: "ReadModeAls"
    ProbeFunction probe;
};
/// All of them, for what has to try each one.
std::span<const ProbeRow> Probes();

/// What the head of a file says.
struct Sniff {
    std::string result; ///< "ECP", "TAV1", "CSV TYPE 0", ... or empty
    bool needs_more = false;
};
/// @param length  of the whole file: the first 520 bytes decide, and for labelled text all its labels
Sniff SniffDataMode(ByteSpan head, std::uint64_t length);

namespace probe_detail {
inline ProbeAnswer Failed(int status = -1)
{
    ProbeAnswer answer;
    answer.status = status;
    return answer;
}
/// The bytes end before the answer.
inline ProbeAnswer Short()
{
    ProbeAnswer answer;
    answer.needs_more = true;
    return answer;
}
inline ProbeAnswer Found(std::string mode, bool spectrum)
{
    ProbeAnswer answer;
    answer.status = 0;
    answer.mode = std::move(mode);
    answer.spectrum_flag = spectrum ? 1 : 0;
    return answer;
}
/// `count` bytes at an offset that may come from the file itself.
inline bool Holds(ByteSpan bytes, std::int64_t offset, std::int64_t count)
{
    const auto size = static_cast<std::int64_t>(bytes.size());
    return offset >= 0 && count >= 0 && count <= size && offset <= size - count;
}
/// Text of a fixed field; a field that the file cuts gives what is there.
std::string FieldText(ByteSpan bytes, std::int64_t offset, std::int64_t length);
/// "V_HOMO:", "VPH_HETERO:" ... and the number of the kind.
std::string ModeOf2D(bool phase_sensitive, bool same_nucleus, int& kind);
} // namespace probe_detail

} // namespace nmr
