// Damaged, missing and foreign files through the whole read: a reason or a warning, never a crash, a
// number that is none, or a short spectrum that looks like a whole one.

#include "session/rig.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <sys/stat.h>

namespace nmr::test {
namespace {

namespace fs = std::filesystem;

struct Outcome {
    Status status;
    std::string said; ///< the reason, or all warnings
    ParamBlock par;
    bool finite = true; ///< every point and the axis
};

bool AllFinite(const auto& values)
{
    return std::ranges::all_of(values, [](auto v) { return std::isfinite(v); });
}

Outcome Read(const std::string& path)
{
    Rig rig;
    rig.Boot();
    rig.g.settings.zerofillsize = 1024; // no filling up
    Outcome out;
    out.status = Read_Path(rig.s, path);
    const DataSet& set = rig.g.Slots[0];
    for (const std::string& warning : set.Warnings) out.said += warning + "\n";
    if (!out.status) out.said = out.status.error().text;
    out.par = set.par;
    out.finite = AllFinite(set.spec.DataRe.all()) && AllFinite(set.spec.DataIm.all()) && AllFinite(set.spec.XAxis);
    EXPECT_EQ(set.par.POINT > 0, static_cast<bool>(out.status)) << "nothing half read";
    return out;
}

/// A read that succeeds (no code) or is refused; nothing to say means no warning at all.
void Expect(const Outcome& out, const std::optional<ErrorCode>& code, std::string_view says)
{
    ASSERT_EQ(static_cast<bool>(out.status), !code) << out.said;
    if (code) {
        EXPECT_EQ(out.status.error().code, *code);
    }
    EXPECT_NE(out.said.find(says), std::string::npos) << out.said;
    EXPECT_TRUE(code || !says.empty() || out.said.empty()) << out.said;
    EXPECT_TRUE(out.finite);
}

/// The sample's parameters with the first 1024 points of its FID.
void WriteSample(const fs::path& folder)
{
    static const TempFolder made;
    static const int failed =
        std::system(("'" NMR1D_BINARY_DIR "/bin/make_sample_fid' '" + made.path().string() + "'").c_str());
    ASSERT_EQ(failed, 0);
    fs::copy(made.path() / "1", folder, fs::copy_options::recursive);
    fs::remove(folder / "acqu");
    fs::resize_file(folder / "fid", 8192);
    std::string acqus = ReadText(folder / "acqus");
    acqus.replace(acqus.find("##$TD= 131072"), 13, "##$TD= 2048");
    WriteText(folder / "acqus", acqus);
}

/// Puts another value into a parameter file.
void Change(const fs::path& file, const std::string& name, const std::string& value)
{
    std::string text = ReadText(file);
    const std::size_t at = text.find("##$" + name + "=");
    if (at == std::string::npos)
        text.insert(text.find("##END="), "##$" + name + "= " + value + "\n");
    else
        text.replace(at, text.find('\n', at) - at, "##$" + name + "= " + value);
    WriteText(file, text);
}

void MakePipe(const fs::path& path)
{
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
}

void MakeFolder(const fs::path& path)
{
    fs::remove(path);
    fs::create_directory(path);
}

void Grow(const fs::path& path)
{
    fs::resize_file(path, std::uint64_t{5} << 30);
}

struct SpoiltFile {
    const char* name;
    void (*spoil)(const fs::path& folder);
    const char* target;            ///< below the folder
    std::optional<ErrorCode> code; ///< none: it reads
    const char* says;
};

const SpoiltFile kSpoiltFiles[] = {
    {"untouched", [](const fs::path&) {}, "", std::nullopt, ""},
    {"no acqus", [](const fs::path& f) { fs::remove(f / "acqus"); }, "", ErrorCode::not_nmr, ""},
    {"no fid", [](const fs::path& f) { fs::remove(f / "fid"); }, "", ErrorCode::not_nmr, ""},
    {"no processing folder", [](const fs::path& f) { fs::remove_all(f / "pdata"); }, "", std::nullopt, ""},
    {"acqus empty", [](const fs::path& f) { WriteText(f / "acqus", ""); }, "", ErrorCode::not_nmr, ""},
    {"acqus binary", [](const fs::path& f) { WriteText(f / "acqus", std::string(5000, '\xFF')); }, "",
     ErrorCode::not_nmr, ""},
    {"acqus a folder", [](const fs::path& f) { MakeFolder(f / "acqus"); }, "", ErrorCode::not_nmr, ""},
    {"acqus a pipe", [](const fs::path& f) { MakePipe(f / "acqus"); }, "", ErrorCode::not_nmr, ""},
    {"acqus of 5 GB", [](const fs::path& f) { Grow(f / "acqus"); }, "", ErrorCode::not_nmr, ""},
    {"acqus of another vendor", [](const fs::path& f) { WriteText(f / "acqus", "##ORIGIN= Acme\n##END=\n"); }, "",
     ErrorCode::not_nmr, ""},
    {"procs empty", [](const fs::path& f) { WriteText(f / "pdata/1/procs", ""); }, "", std::nullopt,
     "procs tells no reference"},
    {"procs a pipe", [](const fs::path& f) { MakePipe(f / "pdata/1/procs"); }, "", std::nullopt,
     "procs tells no reference"},
    {"title a pipe", [](const fs::path& f) { MakePipe(f / "pdata/1/title"); }, "", std::nullopt, ""},
    {"title of 5 GB", [](const fs::path& f) { Grow(f / "pdata/1/title"); }, "", std::nullopt, ""},
    {"fid empty", [](const fs::path& f) { WriteText(f / "fid", ""); }, "fid", ErrorCode::not_nmr, ""},
    {"fid a folder", [](const fs::path& f) { MakeFolder(f / "fid"); }, "fid", ErrorCode::not_nmr, ""},
    {"fid a pipe", [](const fs::path& f) { MakePipe(f / "fid"); }, "fid", ErrorCode::not_nmr, ""},
    {"fid endless", [](const fs::path& f) { fs::remove(f / "fid"), fs::create_symlink("/dev/zero", f / "fid"); }, "fid",
     ErrorCode::not_nmr, ""},
    {"fid a link to itself", [](const fs::path& f) { fs::remove(f / "fid"), fs::create_symlink("fid", f / "fid"); },
     "fid", ErrorCode::not_found, ""},
    {"fid of 5 GB", [](const fs::path& f) { Grow(f / "fid"); }, "", std::nullopt, "longer than its parameters say"},
    {"table of 5 GB", [](const fs::path& f) { WriteText(f / "t.txt", ""), Grow(f / "t.txt"); }, "t.txt",
     ErrorCode::not_nmr, ""},
    {"labelled text of 5 GB", [](const fs::path& f) { WriteText(f / "t.jdx", "##TITLE= x\n"), Grow(f / "t.jdx"); },
     "t.jdx", ErrorCode::not_nmr, ""},
    {"text", [](const fs::path& f) { WriteText(f / "readme.txt", "nothing of the kind\n"); }, "readme.txt",
     ErrorCode::not_nmr, ""},
    {"picture", [](const fs::path& f) { WriteText(f / "p.png", "\x89PNG\r\n\x1A\n"); }, "p.png", ErrorCode::not_nmr,
     ""},
    {"one byte", [](const fs::path& f) { WriteText(f / "x", "x"); }, "x", ErrorCode::not_nmr, ""},
};

TEST(BadInput, FilesThatAreNotWhatTheyShouldBe)
{
    for (const SpoiltFile& c : kSpoiltFiles) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteSample(folder.path() / "exp");
        c.spoil(folder.path() / "exp");
        const auto start = std::chrono::steady_clock::now();
        const Outcome out = Read((folder.path() / "exp" / c.target).string());
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        EXPECT_LT(took.count(), 5) << "a pipe or a huge file holds nothing up";
        Expect(out, c.code, c.says);
    }
}

struct OddParameter {
    const char *file, *name, *value;
    std::optional<ErrorCode> code;
    const char* says;
};
constexpr auto kBad = ErrorCode::bad_value;

const OddParameter kOddParameters[] = {
    {"acqus", "TD", "0", kBad, "TD is \"0\""},
    {"acqus", "TD", "-2048", kBad, "TD is"},
    {"acqus", "TD", "many", kBad, "TD is"},
    {"acqus", "TD", "1099511627776", ErrorCode::too_large, "TD is"},
    {"acqus", "TD", "1e300", ErrorCode::too_large, "TD is"},
    {"acqus", "TD", "16", std::nullopt, "longer than its parameters say"},
    {"acqus", "TD", "4096", std::nullopt, "cut short"},
    {"acqus", "SW_h", "0", kBad, "SW_h is"},
    {"acqus", "SW_h", "inf", kBad, "SW_h is"},
    {"acqus", "SW_h", "1e-320", kBad, "SW_h is"},
    {"acqus", "SFO1", "0", kBad, "SFO1 is"},
    {"acqus", "SFO1", "nan", kBad, "SFO1 is"},
    {"acqus", "SFO1", "inf", kBad, "SFO1 is"},
    {"acqus", "SFO1", "1", std::nullopt, ""}, // procs and BF1 are of another nucleus then
    {"acqus", "NUC1", "<>", std::nullopt, ""},
    {"acqus", "BYTORDA", "1", std::nullopt, ""}, // noise, but numbers
    {"acqus", "BYTORDA", "-7", std::nullopt, ""},
    {"acqus", "DTYPA", "1", std::nullopt, "no numbers"},
    {"acqus", "DTYPA", "2", std::nullopt, "cut short"},
    {"acqus", "AQ_mod", "0", std::nullopt, "one channel"},
    {"acqus", "AQ_mod", "1e308", std::nullopt, ""},
    {"acqus", "GRPDLY", "1e308", std::nullopt, ""},
    {"acqus", "DECIM", "0", std::nullopt, ""},
    {"acqus", "DATE", "1e300", std::nullopt, ""},
    {"acqus", "NS", "1e300", std::nullopt, ""},
    {"acqus", "SOLVENT", "<never closed", ErrorCode::bad_format, "bad parameter line"},
    {"pdata/1/procs", "SF", "0", std::nullopt, ""},
    {"pdata/1/procs", "SF", "nan", std::nullopt, "procs tells no reference"},
    {"pdata/1/procs", "SF", "100.6", std::nullopt, ""}, // of another nucleus
};

TEST(BadInput, ParametersThatCannotBe)
{
    for (const OddParameter& c : kOddParameters) {
        SCOPED_TRACE(std::string(c.name) + "= " + c.value);
        const TempFolder folder;
        WriteSample(folder.path() / "exp");
        Change(folder.path() / "exp" / c.file, c.name, c.value);
        const Outcome out = Read(folder / "exp");
        Expect(out, c.code, c.says);
        EXPECT_LE(std::abs(out.par.OBFRQ0PPM - out.par.ObsCenter), 0.02 * out.par.ObsCenter);
    }
}

TEST(BadInput, ProcessedParametersThatCannotBe)
{
    const OddParameter cases[] = {
        {"", "SI", "0", kBad, "SI is"},
        {"", "SI", "-64", kBad, "SI is"},
        {"", "SI", "1099511627776", ErrorCode::too_large, "SI is"},
        {"", "SI", "32", std::nullopt, "longer than its parameters say"},
        {"", "SI", "4096", std::nullopt, "cut short"},
        {"", "SF", "1e-310", kBad, "SF is"},
        {"", "SW_p", "1e-320", kBad, "SW_p is"},
        {"", "OFFSET", "nan", kBad, "OFFSET is"},
        {"", "NC_proc", "100", kBad, "NC_proc is"}, // not even one point would be finite
        {"", "NC_proc", "60", std::nullopt, "no imaginary part"},
        {"", "DTYPP", "1", std::nullopt, "no imaginary part"},
        {"", "DTYPP", "2", std::nullopt, "cut short"},
        {"", "BYTORDP", "1", std::nullopt, "no imaginary part"},
    };
    for (const OddParameter& c : cases) {
        SCOPED_TRACE(std::string(c.name) + "= " + c.value);
        const TempFolder folder;
        const fs::path spectrum = WriteBrukerSpectrum(folder.path() / "exp", 1024, 100);
        Change(spectrum.parent_path() / "procs", c.name, c.value);
        const Outcome out = Read(spectrum.string());
        Expect(out, c.code, c.says);
    }
}

// A cut file is refused, or marked, or what it lost meant nothing.
TEST(BadInput, NoCutGoesUnnoticed)
{
    for (const auto& [name, cuts] : {std::pair<const char*, std::size_t>{"acqus", 200}, {"fid", 50}}) {
        SCOPED_TRACE(name);
        const TempFolder folder;
        WriteSample(folder.path() / "exp");
        const Outcome whole = Read(folder / "exp");
        ASSERT_TRUE(whole.status);
        const std::string text = ReadText(folder.path() / "exp" / name);
        for (std::size_t i = 0; i < cuts; ++i) {
            const std::size_t size = text.size() * i / cuts;
            SCOPED_TRACE(size);
            WriteText(folder.path() / "exp" / name, text.substr(0, size));
            const Outcome out = Read(folder / "exp");
            EXPECT_FALSE(out.said.empty());
            EXPECT_TRUE(out.finite);
        }
    }
}

template <class T>
std::string Stored(std::size_t count, const std::function<T(std::size_t)>& value)
{
    std::string bytes(count * sizeof(T), '\0');
    for (std::size_t i = 0; i < count; ++i) {
        const T v = value(i);
        std::memcpy(bytes.data() + i * sizeof(T), &v, sizeof(T));
    }
    return bytes;
}

TEST(BadInput, PointsOfEveryKindStayNumbers)
{
    constexpr std::size_t n = 2048;
    const auto ints = [](auto f) { return Stored<std::int32_t>(n, f); };
    const auto floats = [](auto f) { return Stored<float>(n, f); };
    const auto doubles = [](auto f) { return Stored<double>(n, f); };
    constexpr auto kLow = std::numeric_limits<std::int32_t>::min(), kHigh = std::numeric_limits<std::int32_t>::max();
    struct Case {
        const char* name;
        const char* type;
        std::string fid;
        const char* says;
    };
    const Case cases[] = {
        {"zeros", "0", ints([](std::size_t) { return 0; }), "no signal"},
        {"the lowest everywhere", "0", ints([](std::size_t) { return kLow; }), "no signal"},
        {"one point", "0", ints([](std::size_t i) { return i == 500 ? 1 : 0; }), ""},
        {"from lowest to highest", "0", ints([](std::size_t i) { return i % 4 < 2 ? kLow : kHigh; }), ""},
        {"no float", "1", floats([](std::size_t) { return NAN; }), "2048 values of fid are no numbers"},
        {"floats too small", "1", floats([](std::size_t i) { return i % 3 == 0 ? 1e-45F : 0.0F; }), ""},
        {"no double", "2", doubles([](std::size_t) { return std::nan(""); }), "2048 values of fid are no numbers"},
        {"infinite at one point", "2",
         doubles([](std::size_t i) { return i == 7 ? -HUGE_VAL : static_cast<double>(i % 5); }),
         "1 values of fid are no numbers"},
        {"beyond a float", "2", doubles([](std::size_t i) { return i % 3 == 0 ? 1e300 : 1.0; }), "no numbers"},
        {"large doubles", "2", doubles([](std::size_t i) { return i % 3 == 0 ? 1e29 : 1.0; }), ""},
        {"doubles too small", "2", doubles([](std::size_t i) { return i % 3 == 0 ? 4e-320 : 0.0; }), ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteSample(folder.path() / "exp");
        WriteText(folder.path() / "exp/fid", c.fid);
        Change(folder.path() / "exp/acqus", "DTYPA", c.type);
        const Outcome out = Read(folder / "exp");
        Expect(out, std::nullopt, c.says);
    }
}

} // namespace
} // namespace nmr::test
