#include "session/rig.h"

#include "core/numbers.h"
#include "formats/detect.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace nmr::test {
namespace {

void AppendInt32(std::string& out, double value)
{
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value)));
    for (int shift = 0; shift < 32; shift += 8) out += static_cast<char>((bits >> shift) & 0xFFU);
}

std::string Acqus(const BrukerSpec& spec)
{
    const double base = spec.obs_mhz - spec.carrier_hz * 1e-6;
    return fmt::format("##TITLE= Parameter file, TOPSPIN\n##JCAMPDX= 5.0\n##DATATYPE= Parameter Values\n"
                       "##ORIGIN= Bruker BioSpin GmbH\n##$AQ_mod= 3\n##$BF1= {:.9f}\n##$BYTORDA= 0\n##$DECIM= 1\n"
                       "##$DSPFVS= 20\n##$DTYPA= 0\n##$GRPDLY= {}\n##$NS= 1\n##$NUC1= <{}>\n##$O1= {}\n"
                       "##$PARMODE= 0\n##$PULPROG= <zg30>\n##$SFO1= {:.9f}\n##$SW= {:.9f}\n##$SW_h= {}\n##$TD= {}\n"
                       "##END=\n",
                       base, spec.group_delay, spec.nucleus, spec.carrier_hz, spec.obs_mhz,
                       spec.sweep_hz / spec.obs_mhz, spec.sweep_hz, 2 * spec.points);
}

/// A signal that begins `group_delay` points late. The instrument turns the way of exp(+i w t).
std::string FidBytes(const BrukerSpec& spec)
{
    std::string out;
    for (int i = 0; i < spec.points; ++i) {
        const double t = (i - spec.group_delay) / spec.sweep_hz;
        double re = 0, im = 0;
        for (const Tone& tone : spec.tones) {
            if (t < 0) continue;
            const double turn = 2 * kPi * tone.hz * t + tone.phase_deg * kDegToRad;
            const double size = 1e6 * tone.amplitude * std::exp(-kPi * spec.decay_hz * t);
            re += size * std::cos(turn);
            im += size * std::sin(turn);
        }
        AppendInt32(out, re);
        AppendInt32(out, im);
    }
    return out;
}

} // namespace

std::string WriteBrukerFid(const std::filesystem::path& folder, const BrukerSpec& spec)
{
    WriteText(folder / "acqus", Acqus(spec));
    WriteText(folder / "fid", FidBytes(spec));
    return (folder / "fid").string();
}

std::string WriteBrukerSpectrum(const std::filesystem::path& folder, int points, int top)
{
    WriteText(folder / "acqus", Acqus({}));
    const auto processed = folder / "pdata" / "1";
    WriteText(processed / "procs",
              fmt::format("##TITLE= Parameter file, TOPSPIN\n##JCAMPDX= 5.0\n##DATATYPE= Parameter Values\n"
                          "##ORIGIN= Bruker BioSpin GmbH\n##$BYTORDP= 0\n##$DTYPP= 0\n##$NC_proc= 0\n##$OFFSET= 12.0\n"
                          "##$PPARMOD= 0\n##$SF= 400.0\n##$SI= {}\n##$SW_p= 4000\n##END=\n",
                          points));
    std::string values;
    for (int i = 0; i < points; ++i) AppendInt32(values, std::max(0, 1000 - 100 * std::abs(i - top)));
    WriteText(processed / "1r", values);
    return (processed / "1r").string();
}

std::string WriteBruker2D(const std::filesystem::path& folder)
{
    const auto processed = std::filesystem::path(WriteBrukerSpectrum(folder, 64, 5)).parent_path();
    WriteText(processed / "2rr", std::string(256, '\1'));
    return (processed / "2rr").string();
}

std::string WriteUnreadableFamily(const std::filesystem::path& folder)
{
    WriteText(folder / "old.hed", "DIM1 1\n" + std::string(600, ' '));
    WriteText(folder / "old.fid", std::string(2048, '\3'));
    return (folder / "old.hed").string();
}

Rig::Rig(std::initializer_list<ScriptedAsker::Answer> answers) : asker(answers)
{
    s.run_fft_form = [this](FftForm& form) {
        if (form_answer != "OK") return form_answer;
        EXPECT_TRUE(form.Command3());
        return g.DialogResult;
    };
    s.display_changed = [this] { ++repaints; };
    s.set_title = [this](const std::string& title) { titles.push_back(title); };
    s.start_program = [this](const std::string& program, const std::string& argument) {
        if (sibling_installed) started.push_back(program + " " + argument);
        return sibling_installed;
    };
    s.another_run_present = [] { return false; };
}

void Rig::Boot()
{
    Start_Batch(g);
    g.AppPath = folder.path();
    Claim_Work_File(g);
}

std::vector<std::string> Rig::Texts() const
{
    std::vector<std::string> out;
    for (const MessageBox& box : asker.boxes) out.push_back(box.title + ": " + box.text);
    return out;
}

FormAnswer Pressed(std::string word, forms::Values values)
{
    return {std::move(word), std::move(values)};
}

std::optional<FileChoice> Chosen(std::string path, int filter)
{
    return FileChoice{std::move(path), filter};
}

std::optional<FileChoice> NothingChosen()
{
    return std::nullopt;
}

double HighestPpm(const DataSet& set)
{
    const auto row = set.spec.DataRe[0].first(static_cast<std::size_t>(set.par.POINT));
    return set.spec.XAxis[static_cast<std::size_t>(std::max_element(row.begin(), row.end()) - row.begin())];
}

} // namespace nmr::test

namespace nmr {
namespace {

using test::Rig;

// The other tests trust these folders.
TEST(Rig, WritesFoldersThatTheDetectionKnows)
{
    struct Case {
        const char* name;
        std::string (*write)(const std::filesystem::path&);
        std::int32_t code;
    };
    const Case cases[] = {
        {"FID", [](const std::filesystem::path& f) { return test::WriteBrukerFid(f); }, 4100},
        {"spectrum", [](const std::filesystem::path& f) { return test::WriteBrukerSpectrum(f, 64, 9); }, 4356},
        {"two-dimensional", test::WriteBruker2D, 8452},
        {"recognised only", test::WriteUnreadableFamily, 4106},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Rig rig;
        const FileType type = ReadFileType(c.write(rig.folder.path()), rig.asker, NuclearTable::BuiltIn());
        EXPECT_EQ(type.code, c.code);
    }
}

} // namespace
} // namespace nmr
