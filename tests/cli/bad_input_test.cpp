// What nmr1d-cli says of bad input: the exit code, one JSON object that always parses, and words on
// standard error.

#include "cli/cli_run.h"

#include <sys/stat.h>

namespace nmr::test {
namespace {

namespace fs = std::filesystem;

void Change(const fs::path& file, const std::string& name, const std::string& value)
{
    std::string text = ReadText(file);
    const auto at = text.find("##$" + name + "=");
    text.replace(at, text.find('\n', at) - at, "##$" + name + "= " + value);
    WriteText(file, text);
}

class CliBadInput : public CliSample {
protected:
    /// A copy of the sample to be spoilt, without the parameters of the next run.
    fs::path Copy(const std::string& name)
    {
        fs::copy(Sample(), folder_.path() / name, fs::copy_options::recursive);
        fs::remove(folder_.path() / name / "acqu");
        return folder_.path() / name;
    }

private:
    TempFolder folder_;
};

TEST_F(CliBadInput, ExitCodesAndReasons)
{
    struct Case {
        const char* name;
        void (*spoil)(const fs::path&);
        int exit;
        const char* says; ///< in the error, or in a warning
    };
    const Case cases[] = {
        {"no acqus", [](const fs::path& f) { fs::remove(f / "acqus"); }, 3, "No NMR data"},
        {"another vendor", [](const fs::path& f) { WriteText(f / "acqus", "##ORIGIN= Acme\n##END=\n"); }, 3, "No NMR"},
        {"no fid", [](const fs::path& f) { fs::remove(f / "fid"); }, 3, "No NMR data"},
        {"a pipe", [](const fs::path& f) { fs::remove(f / "fid"), mkfifo((f / "fid").c_str(), 0600); }, 3, "No NMR"},
        {"rows", [](const fs::path& f) { fs::rename(f / "fid", f / "ser"); }, 4, "Two-dimensional"},
        {"TD 0", [](const fs::path& f) { Change(f / "acqus", "TD", "0"); }, 5, "TD is \"0\""},
        {"TD 2^40", [](const fs::path& f) { Change(f / "acqus", "TD", "1099511627776"); }, 5, "TD is"},
        {"no width", [](const fs::path& f) { Change(f / "acqus", "SW_h", "nan"); }, 5, "SW_h is"},
        {"no frequency", [](const fs::path& f) { Change(f / "acqus", "SFO1", "0"); }, 5, "SFO1 is"},
        {"no record", [](const fs::path& f) { Change(f / "acqus", "TD", "8\n##TD 8"); }, 3, "No NMR data"},
        {"cut", [](const fs::path& f) { fs::resize_file(f / "fid", 1001); }, 0, "cut short"},
        {"zeros", [](const fs::path& f) { WriteText(f / "fid", std::string(524288, '\0')); }, 0, "no signal"},
        {"5 GB", [](const fs::path& f) { fs::resize_file(f / "fid", std::uint64_t{5} << 30); }, 0, "longer than"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path folder = Copy(c.name);
        c.spoil(folder);
        const auto run = Cli("process --json " + Quoted(folder));
        ASSERT_EQ(run.exit, c.exit);
        const Json json = run.json();
        const std::string said = json.contains("error") ? json["error"].get<std::string>() : json["warnings"].dump();
        EXPECT_NE(said.find(c.says), std::string::npos) << said;
        const auto words =
            RunCommand("( " + kBin + "nmr1d-cli process --json " + Quoted(folder) + " 2>&1 >/dev/null )");
        EXPECT_NE(words.out.find(c.says), std::string::npos) << words.out;
    }
}

TEST_F(CliBadInput, TextsOfAnyCodePageStayReadable)
{
    struct Case {
        const char* name;
        std::string bytes, utf8;
    };
    const Case cases[] = {
        {"UTF-8", "L\xC3\xB6sung", "L\xC3\xB6sung"},
        {"Latin-1", "L\xF6sung", "L\xC3\xB6sung"},
        {"neither", "\xFF\xFE\xC3(", "\xC3\xBF\xC3\xBE\xC3\x83("},
        {"half a surrogate", "a\xED\xA0\x80", "a\xC3\xAD\xC2\xA0\xC2\x80"},
        {"quotes and controls", "a\"\\\x1B[0m", "a\"\\\x1B[0m"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path folder = Copy(c.name);
        for (const char* key : {"SOLVENT", "PULPROG", "PROBHD"}) Change(folder / "acqus", key, "<" + c.bytes + ">");
        WriteText(folder / "pdata/1/title", c.bytes + "\n");
        const auto run = Cli("process --json " + Quoted(folder));
        ASSERT_EQ(run.exit, 0);
        const Json json = run.json(); // throws for anything but UTF-8
        EXPECT_EQ(json["params"]["SLVNT"], c.utf8);
        EXPECT_EQ(json["params"]["COMNT"], c.utf8);
    }
}

TEST_F(CliBadInput, NamesOfAnyBytesAreAnsweredInJson)
{
    const fs::path folder = Copy("\xFF\xFE name");
    for (const auto& [path, exit] : {std::pair{folder, 0}, {folder / "nothing", 3}}) {
        const auto run = Cli("process --json " + Quoted(path));
        EXPECT_EQ(run.exit, exit);
        EXPECT_NE(run.json()["file"].get<std::string>().find("\xEF\xBF\xBD name"), std::string::npos);
    }
}

TEST_F(CliBadInput, AFullStandardOutputIsNoSuccess)
{
    EXPECT_EQ(RunCommand(kBin + "nmr1d-cli process --json " + Sample() + " >/dev/full").exit, 6);
    EXPECT_EQ(RunCommand(kBin + "nmr1d-cli formats >/dev/full").exit, 6);
}

} // namespace
} // namespace nmr::test
