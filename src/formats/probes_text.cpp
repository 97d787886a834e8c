// Probes of the families whose parameters are text. Labelled records: JCAMP-DX 4.24 to 6.00 and the
// parameter files of Bruker, which borrow its form. Spellings are those met in files of Bruker, JEOL,
// MestReNova, Nanalysis and Magritek programs: labels come without blanks, in any case.

#include "core/numbers.h"
#include "core/text.h"
#include "formats/csv_table.h"
#include "formats/key_values.h"
#include "formats/probes.h"

#include <algorithm>
#include <array>

namespace nmr {

using namespace probe_detail;

namespace {

/// Upper case without blanks, "-", "/" and "_": in that form labels and data types compare equal.
std::string Squeezed(std::string_view text)
{
    std::string out;
    for (const char c : ToUpper(text))
        if (c != ' ' && c != '-' && c != '/' && c != '_') out += c;
    return out;
}

/// The value of a private record: without angle brackets, and without the unit behind "$$".
std::string PrivateValue(const std::string& value)
{
    if (value.starts_with('<')) return value.substr(1, value.find('>') - 1);
    return std::string(Trim(std::string_view(value).substr(0, value.find("$$"))));
}

// --- Bruker

constexpr std::string_view kBrukerOrigins[] = {"UXNMR", "BRUKER", "XWIN-NMR"};

int BrukerAcqMode(const std::string& value)
{
    const auto number = ParseInteger(PrivateValue(value));
    if (number == 1) return 0;
    return number == 2 ? 1 : 2;
}

struct BrukerNames {
    std::string_view byte_order;
    bool acquisition = false;
};

/// A record without "=" is one that was cut; only the end may stand without.
bool IsBadRecord(const std::string& line)
{
    return line.starts_with("##") && line.find('=') == std::string::npos && !EqualsNoCase(Trim(line), "##END");
}

ProbeAnswer BrukerProbe(ByteSpan head, const BrukerNames& names)
{
    LineReader reader(head);
    ProbeAnswer answer = Found("1D:", !names.acquisition);
    bool vendor = false;
    for (std::string line; !(line = reader.Read_TextLine()).empty();) {
        LabelledRecord record;
        if (IsBadRecord(line)) return Failed(65535);
        if (!line.starts_with("##") || !Split_Value(line, record)) continue; // comments, rows of arrays
        if (record.label == "##ORIGIN")
            vendor = std::ranges::any_of(kBrukerOrigins, [&](auto name) { return ContainsNoCase(record.value, name); });
        else if (record.label == "##$PULPROG")
            answer.mode = "1D:" + PrivateValue(record.value);
        else if (record.label == names.byte_order)
            answer.byte_order = ParseInteger(PrivateValue(record.value)) == 1 ? 1 : 0;
        else if (names.acquisition && record.label == "##$AQ_MOD")
            answer.acq_mode = BrukerAcqMode(record.value);
    }
    return vendor ? answer : Failed(1);
}

// --- JCAMP-DX

/// Walks the labels of a JCAMP-DX file up to its first NMR table.
class JcampLabels {
public:
    ProbeAnswer Run(ByteSpan head)
    {
        LineReader reader(head);
        for (std::string line; !done_ && !(line = reader.Read_TextLine()).empty();) Take(std::string(Trim(line)));
        ProbeAnswer answer = Answer();
        answer.needs_more = reader.at_end();
        return answer;
    }

private:
    enum class Block { none, own, bruker };
    enum class Kind { none, fid, spectrum, two_dimensional };

    ProbeAnswer Answer() const
    {
        const Kind kind = kind_ != Kind::none ? kind_ : earlier_;
        if (kind == Kind::none) {
            ProbeAnswer answer = Failed(1);
            answer.mode = "ERR";
            return answer;
        }
        const bool plane = kind == Kind::two_dimensional;
        return Found((plane ? "2D:" : "1D:") + mode_, plane ? plane_is_spectrum_ : kind == Kind::spectrum);
    }

    void Take(const std::string& line)
    {
        LabelledRecord record;
        if (!Split_Value(line, record)) return;
        if (line.starts_with("$$")) {
            TakeComment(ToUpper(line));
        } else if (line.starts_with("##$")) {
            if (block_ == Block::own && record.label == "##$EXMOD") mode_ = PrivateValue(record.value);
            if (block_ == Block::bruker && record.label == "##$PULPROG") mode_ = PrivateValue(record.value);
        } else {
            block_ = Block::none;
            TakeRecord(Squeezed(record.label), record.value);
        }
    }

    void TakeComment(const std::string& line)
    {
        if (line.starts_with("$$ JEOL SPECIFIC PARAMETERS") || line.starts_with("$$ NMR SPECIFIC PARAMETERS"))
            block_ = Block::own;
        else if (line.starts_with("$$ BRUKER SPECIFIC PARAMETERS"))
            block_ = Block::bruker;
        else if (line.starts_with("$$ END OF "))
            block_ = Block::none;
    }

    void TakeRecord(const std::string& label, const std::string& value)
    {
        if (label == "##DATATYPE")
            TakeDataType(Squeezed(value));
        else if (label == "##XYDATA" || label == "##DATATABLE")
            done_ = !link_ || (kind_ != Kind::none && kind_ != Kind::two_dimensional);
        else if (label == "##END") {
            // In a file of several blocks a peak list or a structure may stand before the spectrum.
            done_ = !link_;
            if (kind_ != Kind::none) earlier_ = kind_;
            kind_ = link_ ? Kind::none : kind_;
        }
    }

    void TakeDataType(const std::string& type)
    {
        const bool spectrum = ContainsNoCase(type, "NMRSPECTRUM"), fid = ContainsNoCase(type, "NMRFID");
        if (type.starts_with("LINK")) link_ = true;
        if (!spectrum && !fid) return;
        kind_ = spectrum ? Kind::spectrum : Kind::fid;
        if (!type.starts_with("ND")) return;
        kind_ = Kind::two_dimensional;
        plane_is_spectrum_ = spectrum;
    }

    std::string mode_ = "JCAMP-DX";
    Block block_ = Block::none;
    Kind kind_ = Kind::none;
    Kind earlier_ = Kind::none; ///< of a block of the same file that had no table
    bool plane_is_spectrum_ = false;
    bool link_ = false;
    bool done_ = false;
};

// --- JEOL EX, GX, GSX

struct PackedField {
    std::string_view key;
    std::size_t width;
};
constexpr std::size_t kPackedKeyWidth = 7;
constexpr std::size_t kPackedModeWidth = 39;
constexpr PackedField kPackedComments[] = {{"COMNT", 71}, {"EXPCM", 71}};
constexpr PackedField kPackedValues[] = {{"DTYPE", 32}, {"SMODE", 32}};
constexpr std::string_view kPackedMode = "EXMOD";

struct ExValues {
    std::string mode, dimension, spectrum;
};

std::string PackedValue(const std::string& text, const PackedField& field)
{
    std::string key, value;
    const auto at = text.find(field.key);
    if (at != std::string::npos) Split_KeyValue(text.substr(at, field.width), key, value);
    return value;
}

/// The old header is one long line of fields of fixed widths, in no fixed order.
ExValues PackedHeader(std::string text)
{
    // Free text goes first: it may hold the name of another field.
    for (const PackedField& field : kPackedComments)
        if (const auto at = text.find(field.key); at != std::string::npos)
            text.replace(at + field.key.size(), field.width - field.key.size(),
                         std::string(field.width - field.key.size(), ' '));
    ExValues values{{}, PackedValue(text, kPackedValues[0]), PackedValue(text, kPackedValues[1])};
    const auto at = text.find(kPackedMode);
    if (at == std::string::npos) return values;
    std::size_t end = std::min(text.size(), at + kPackedModeWidth);
    for (const std::string_view key :
         {kPackedComments[0].key, kPackedComments[1].key, kPackedValues[0].key, kPackedValues[1].key})
        end = std::min(end, text.find(key, at + kPackedMode.size()));
    if (end > at + kPackedKeyWidth)
        values.mode = std::string(Trim(text.substr(at + kPackedKeyWidth, end - at - kPackedKeyWidth)));
    return values;
}

ExValues LineHeader(LineReader& reader)
{
    constexpr int kHeadingLines = 6;
    ExValues values;
    for (int i = 0; i < kHeadingLines; ++i) reader.Read_TextLine();
    for (std::string line, key, value; !(line = reader.Read_TextLine()).empty();) {
        if (!Split_KeyValue(line, key, value)) continue;
        if (key == "EXMOD") values.mode = value;
        if (key == "DTYPE") values.dimension = value;
        if (key == "SMODE") values.spectrum = value;
    }
    return values;
}

} // namespace

ProbeAnswer ReadModeBruker(ByteSpan head, const ProbeContext&)
{
    return BrukerProbe(head, {"##$BYTORDA", true});
}

ProbeAnswer ReadModeBrukerProc(ByteSpan head, const ProbeContext&)
{
    return BrukerProbe(head, {"##$BYTORDP", false});
}

ProbeAnswer ReadModeJCAMP(ByteSpan head, const ProbeContext&)
{
    return JcampLabels().Run(head);
}

ProbeAnswer ReadModeCSV(ByteSpan head, const ProbeContext& context)
{
    const std::string_view text =
        WithoutMark(std::string_view(reinterpret_cast<const char*>(head.data()), head.size()));
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    // A table may stand behind lines of words; which separator it has is the reader's to find out.
    const std::string_view field = Trim(line.substr(0, line.find_first_of(",;\t")));
    if (ParseNumber(field) || line.starts_with("$CSVSTART") || IsCsvTable(text)) return Found("1D:", false);
    context.asker.Message({.text = "Invalid Data", .title = "Data Error"});
    return Failed(1);
}

ProbeAnswer ReadModeEX(ByteSpan head, const ProbeContext&)
{
    constexpr std::size_t kPackedLine = 80;
    LineReader reader(head);
    const std::string first = reader.Read_TextLine();
    const ExValues values = first.size() >= kPackedLine ? PackedHeader(first) : LineHeader(reader);
    if (values.mode.size() < 2) return Failed();
    std::string mode = values.mode;
    if (!mode.starts_with('V')) mode = ParseNumber(values.dimension) == 2.0 ? "V" + mode : "1D";
    return Found(mode, ParseNumber(values.spectrum).value_or(0.0) != 0.0);
}

ProbeAnswer ReadModeGEOmega(ByteSpan head, const ProbeContext&)
{
    constexpr double kMostRows = 128;
    const KeyValues keys = KeyValues::Parse(head);
    const std::string* text = keys.Find("DIM1");
    const auto rows = text != nullptr ? ParseNumber(*text) : std::nullopt;
    if (!rows) return Failed();
    return Found(*rows < kMostRows ? "1D" : "V2D", false);
}

ProbeAnswer ReadModeCMX(ByteSpan head, const ProbeContext&)
{
    const KeyValues acq = KeyValues::Parse(head);
    const std::string* experiment = acq.Find("PPFN");
    if (experiment == nullptr) return Failed();
    return Found("1D:" + *experiment, false);
}

} // namespace nmr
