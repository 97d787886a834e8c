#include "session/read_flow.h"

#include "core/text.h"
#include "session/display_scope.h"
#include "session/fid_intake.h"
#include "session/rig.h"

#include <cmath>
#include <numeric>

namespace nmr {
namespace {

using test::BrukerSpec;
using test::Chosen;
using test::NothingChosen;
using test::Pressed;
using test::Rig;

// A running program on small data: no fill, so that one point is 8000 Hz / 1024.
void BootPlain(Rig& rig)
{
    rig.Boot();
    rig.g.settings.auto_zerofill = 0;
}

TEST(ReadFlow, AFidBecomesAReferencedSpectrumOnTheDisplay)
{
    Rig rig;
    BootPlain(rig);
    const std::string path = test::WriteBrukerFid(rig.folder.path() / "exp" / "1");
    ASSERT_TRUE(Read_Path(rig.s, path));

    const ParamBlock& par = rig.g.Slots[0].par;
    EXPECT_EQ(par.SMODE, 1);
    EXPECT_EQ(par.POINT, 1024);
    EXPECT_EQ(par.DataVersion, "8000.00");
    EXPECT_EQ(par.EXMOD, "zg30");
    EXPECT_EQ(par.OrgFile, path);
    EXPECT_EQ(par.FileName, path);
    EXPECT_EQ(par.DataChanged, 1) << "no file holds the spectrum";
    EXPECT_EQ(par.DataFromFile, 0);
    EXPECT_GT(par.DataMax, 0.0F);
    EXPECT_FALSE(rig.g.NoSpectrumYet);
    // The line stands 1000 Hz above the carrier, which stands 2000 Hz above 0 ppm.
    EXPECT_NEAR(test::HighestPpm(rig.g.Slots[0]), 7.5, 8.0 / 400.0);

    EXPECT_EQ(rig.titles, std::vector<std::string>{"NMR 1D              " + path});
    EXPECT_EQ(rig.g.RecentFiles, std::vector<std::string>{path});
    EXPECT_EQ(rig.g.LastDirs[0], (rig.folder.path() / "exp" / "1").string());
    EXPECT_EQ(test::ReadText(rig.g.WorkFile), path + "\n");
    EXPECT_FLOAT_EQ(rig.g.ViewLeft, 9.9F);
    EXPECT_FLOAT_EQ(rig.g.ViewRight, 0.0F);
    EXPECT_NEAR(rig.g.ShownHzLeft, 9.9 * 400.0, 1.0);
    EXPECT_EQ(rig.repaints, 1);
    EXPECT_TRUE(rig.asker.boxes.empty());
}

TEST(ReadFlow, LinesAboveTheCarrierStandAtHigherPpm)
{
    for (const double hz : {-1900.0, -250.0, 500.0, 3000.0}) {
        SCOPED_TRACE(hz);
        Rig rig;
        BootPlain(rig);
        BrukerSpec spec;
        spec.tones = {{hz, 1.0, 0.0}};
        ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "exp", spec)));
        EXPECT_NEAR(test::HighestPpm(rig.g.Slots[0]), (2000.0 + hz) / 400.0, 8.0 / 400.0);
    }
}

TEST(ReadFlow, AnOddLengthIsPaddedAndTheMeasuredCountKept)
{
    Rig rig;
    BootPlain(rig);
    BrukerSpec spec;
    spec.points = 1100;
    ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "exp", spec)));
    EXPECT_EQ(rig.g.Slots[0].par.POINT, 2048);
    EXPECT_EQ(rig.g.Slots[0].par.FIDPointsRaw, 2048);
    EXPECT_EQ(rig.g.Slots[0].par.FIDPoints, 1100);
}

TEST(ReadFlow, ASpectrumIsShownAsItStands)
{
    Rig rig;
    BootPlain(rig);
    const std::string path = test::WriteBrukerSpectrum(rig.folder.path() / "exp", 256, 100);
    rig.s.run_fft_form = [](FftForm&) -> std::string {
        ADD_FAILURE() << "a spectrum needs no transform";
        return "CANCEL";
    };
    ASSERT_TRUE(Read_Path(rig.s, path));
    const ParamBlock& par = rig.g.Slots[0].par;
    EXPECT_EQ(par.DataChanged, 0);
    EXPECT_EQ(par.DataFromFile, 1);
    EXPECT_FLOAT_EQ(par.YFill, 0.95F);
    EXPECT_FLOAT_EQ(par.DispBase, 0.0F);
    EXPECT_NEAR(par.YMag, par.DataMax / 0.95F, 1e-3F * par.YMag);
    EXPECT_NEAR(par.DispLeft, par.DataMax, 1e-6F * par.DataMax);
    EXPECT_NEAR(test::HighestPpm(rig.g.Slots[0]), 12.0 - 100 * (10.0 / 256), 1e-9);
    EXPECT_EQ(rig.g.Slots[0].spec.SourceRe[0][100], rig.g.Slots[0].spec.DataRe[0][100]);
}

TEST(ReadFlow, APresetBesideTheDataShowsAllOfThem)
{
    struct Case {
        const char* name;
        double left, right; ///< preset
        bool all;
    };
    // The spectrum runs from 12 down to 2.04 ppm.
    for (const Case& c : {Case{"overlapping", 9.9, 0.0, false}, Case{"above", 300.0, 100.0, true},
                          Case{"below", 2.0, -5.0, true}, Case{"empty", 5.0, 5.0, true}}) {
        SCOPED_TRACE(c.name);
        Rig rig;
        BootPlain(rig);
        SetPreset(rig.g.settings, 0, 1, XUnit::ppm, {c.left, c.right});
        rig.g.Slots[0].par.OBNUC = "1H";
        ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerSpectrum(rig.folder.path() / "exp", 256, 100)));
        EXPECT_NEAR(rig.g.ViewLeft, c.all ? 12.0 : c.left, 1e-5);
        EXPECT_NEAR(rig.g.ViewRight, c.all ? 12.0 - 255 * 10.0 / 256 : c.right, 1e-5);
    }
}

struct BadFile {
    const char* name;
    std::string (*write)(const std::filesystem::path&);
    ErrorCode code;
    const char* message; ///< start of "title: text"; empty for no box
    bool touched;        ///< refused only after slot 0 was given up
};

std::string WriteNoise(const std::filesystem::path& folder)
{
    test::WriteText(folder / "picture.bin", std::string(700, '\x01'));
    return (folder / "picture.bin").string();
}

std::string WriteEmptyFid(const std::filesystem::path& folder)
{
    const std::string path = test::WriteBrukerFid(folder);
    test::WriteText(folder / "fid", "");
    return path;
}

std::string WriteTooLong(const std::filesystem::path& folder)
{
    const std::string path = test::WriteBrukerFid(folder);
    std::string acqus = test::ReadText(folder / "acqus");
    acqus.replace(acqus.find("##$TD= 2048"), 11, "##$TD= 4194304");
    test::WriteText(folder / "acqus", acqus);
    std::filesystem::resize_file(folder / "fid", 4U * 4194304U);
    return path;
}

const BadFile kBadFiles[] = {
    {"no such file", [](const std::filesystem::path& f) { return (f / "gone" / "fid").string(); }, ErrorCode::not_found,
     "", false},
    {"no NMR data", WriteNoise, ErrorCode::not_nmr, "Data Error: Non NMR Data !", false},
    {"two dimensions", test::WriteBruker2D, ErrorCode::two_dimensional, "Data Error: 2D Data !\nRetry", false},
    {"recognised only", test::WriteUnreadableFamily, ErrorCode::unsupported, "Data Error: GE Omega", false},
    {"too many points", WriteTooLong, ErrorCode::too_large, "Data Error: Data is too Large, or Parameter Error", true},
};

std::vector<float> Points(const DataSet& set)
{
    const auto row = set.spec.DataRe[0];
    return {row.begin(), row.end()};
}

TEST(ReadFlow, UnsavedWorkSurvivesEveryFailure)
{
    for (const BadFile& bad : kBadFiles) {
        SCOPED_TRACE(bad.name);
        Rig rig{Pressed("Do not Save")};
        BootPlain(rig);
        const std::string good = test::WriteBrukerFid(rig.folder.path() / "good");
        ASSERT_TRUE(Read_Path(rig.s, good));
        rig.g.Slots[0].Peaks.push_back({17});
        const std::vector<float> before = Points(rig.g.Slots[0]);
        rig.g.ViewLeft = 8.0F;

        const Status status = Read_Path(rig.s, bad.write(rig.folder.path() / "bad"));
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().code, bad.code);
        EXPECT_EQ(rig.g.Slots[0].par.DataChanged, 1);
        EXPECT_EQ(rig.g.Slots[0].par.FileName, good);
        EXPECT_EQ(rig.g.Slots[0].Peaks.size(), 1U);
        EXPECT_EQ(Points(rig.g.Slots[0]), before);
        EXPECT_FLOAT_EQ(rig.g.ViewLeft, 8.0F);
        EXPECT_EQ(rig.g.RecentFiles, std::vector<std::string>{good});
        EXPECT_EQ(test::ReadText(rig.g.WorkFile), good + "\n");
        ASSERT_EQ(rig.asker.boxes.size(), 1U) << "one message, not two";
        EXPECT_TRUE(rig.Texts()[0].starts_with(bad.message)) << rig.Texts()[0];
        ASSERT_EQ(rig.asker.forms.size(), 1U);
        EXPECT_EQ(rig.asker.forms[0].values.at(forms::kText), "Data was Changed");
    }
}

TEST(ReadFlow, WithoutUnsavedWorkAFailureBehindTheQuestionsLeavesNothingHalfRead)
{
    for (const BadFile& bad : kBadFiles) {
        SCOPED_TRACE(bad.name);
        Rig rig;
        BootPlain(rig);
        ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerSpectrum(rig.folder.path() / "good", 256, 100)));
        ASSERT_FALSE(Read_Path(rig.s, bad.write(rig.folder.path() / "bad")));
        EXPECT_EQ(rig.g.Slots[0].par.POINT, bad.touched ? 0 : 256);
        EXPECT_EQ(test::ReadText(rig.g.WorkFile).empty(), bad.touched) << "the file is given up with its data";
    }
}

TEST(ReadFlow, AnEmptyFidIsAFailure)
{
    Rig rig;
    BootPlain(rig);
    ASSERT_FALSE(Read_Path(rig.s, WriteEmptyFid(rig.folder.path() / "bad")));
    EXPECT_EQ(rig.g.Slots[0].par.POINT, 0);
    EXPECT_FALSE(rig.asker.boxes.empty());
}

TEST(ReadFlow, AnAbandonedTransformBringsTheUnsavedDataBack)
{
    Rig rig{Pressed("Do not Save")};
    BootPlain(rig);
    const std::string good = test::WriteBrukerFid(rig.folder.path() / "good");
    ASSERT_TRUE(Read_Path(rig.s, good));
    const std::vector<float> before = Points(rig.g.Slots[0]);
    rig.form_answer = "CANCEL";
    BrukerSpec shorter;
    shorter.points = 256;
    const Status status = Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "new", shorter));
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code, ErrorCode::cancelled);
    EXPECT_EQ(Points(rig.g.Slots[0]), before);
    EXPECT_EQ(rig.g.Slots[0].par.DataChanged, 1);
    EXPECT_GE(rig.g.WorkLine.size(), before.size()) << "work arrays as long as the rows";
    EXPECT_TRUE(rig.g.NoFIDFile) << "the kept FID is that of the other file";
    EXPECT_TRUE(rig.asker.boxes.empty());
}

TEST(ReadFlow, AnAbandonedTransformOfAFirstFileLeavesNothingLoaded)
{
    Rig rig;
    BootPlain(rig);
    rig.form_answer = "CANCEL";
    ASSERT_FALSE(Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "new")));
    EXPECT_EQ(rig.g.Slots[0].par.POINT, 0);
    EXPECT_FALSE(rig.g.NoSpectrumYet);
    EXPECT_TRUE(rig.g.RecentFiles.empty());
}

TEST(ReadFlow, CancelAtTheQuestionTouchesNothing)
{
    Rig rig{Pressed("Cancel")};
    BootPlain(rig);
    const std::string good = test::WriteBrukerFid(rig.folder.path() / "good");
    ASSERT_TRUE(Read_Path(rig.s, good));
    const Status status = NMR1D_m11_Click(rig.s);
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code, ErrorCode::cancelled);
    EXPECT_TRUE(rig.asker.dialogs.empty());
    EXPECT_EQ(rig.g.Slots[0].par.FileName, good);
}

TEST(ReadFlow, TheDialogComesBackUntilAFileCanBeRead)
{
    Rig source;
    const std::string noise = WriteNoise(source.folder.path());
    const std::string plane = test::WriteBruker2D(source.folder.path() / "2d");
    const std::string good = test::WriteBrukerFid(source.folder.path() / "good");
    Rig rig{Chosen(noise), Chosen(plane), Chosen(good, 2)};
    BootPlain(rig);
    rig.g.LastDirs[0] = rig.Path("somewhere");
    std::filesystem::create_directories(rig.g.LastDirs[0]);
    ASSERT_TRUE(NMR1D_m11_Click(rig.s));
    ASSERT_EQ(rig.asker.dialogs.size(), 3U);
    EXPECT_EQ(rig.asker.dialogs[0].title, "Read Data");
    EXPECT_EQ(rig.asker.dialogs[0].folder, rig.Path("somewhere"));
    EXPECT_EQ(rig.asker.dialogs[0].filters.front().expression, "*.tv1;*.tvo*");
    EXPECT_EQ(rig.g.settings.initiatl_file, 2);
    EXPECT_EQ(rig.asker.boxes.size(), 2U);
    EXPECT_TRUE(rig.asker.boxes[0].beep);
}

TEST(ReadFlow, ACancelledDialogEndsTheCommand)
{
    Rig rig{NothingChosen()};
    BootPlain(rig);
    const Status status = NMR1D_m11_Click(rig.s);
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code, ErrorCode::cancelled);
}

TEST(ReadFlow, TheFileOfTheCommandLineIsReadOnceAndWithoutADialog)
{
    Rig rig{NothingChosen()};
    BootPlain(rig);
    rig.g.CmdLineFile = WriteNoise(rig.folder.path() / "bad");
    EXPECT_EQ(NMR1D_m11_Click(rig.s).error().code, ErrorCode::not_nmr);
    EXPECT_TRUE(rig.g.CmdLineFile.empty());
    EXPECT_TRUE(rig.asker.dialogs.empty());
    EXPECT_EQ(NMR1D_m11_Click(rig.s).error().code, ErrorCode::cancelled);
    EXPECT_EQ(rig.asker.dialogs.size(), 1U);
}

TEST(ReadFlow, AFileThatAnotherRunHasOpenIsRefused)
{
    Rig rig;
    BootPlain(rig);
    const std::string path = test::WriteBrukerFid(rig.folder.path() / "Exp");
    const std::filesystem::path other = rig.folder.path() / "Work_File_1D0007.wkf";
    struct Case {
        const char* name;
        std::string line;
        bool in_use;
    };
    const Case cases[] = {
        {"the path", path, true},
        {"in capitals, blanks around", "  " + ToUpper(path) + " \r\nmore", true},
        {"with a detour", (rig.folder.path() / "Exp" / ".." / "Exp" / "fid").string(), true},
        {"another file", path + "x", false},
        {"nothing", "", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::WriteText(other, c.line);
        EXPECT_EQ(IsFileInUse(rig.g, path), c.in_use);
    }
    ClaimFile(rig.g, path);
    EXPECT_FALSE(IsFileInUse(rig.g, path)) << "its own claim";
    std::filesystem::remove(other);
    std::filesystem::create_directory(other);
    EXPECT_FALSE(IsFileInUse(rig.g, path)) << "a claim that can't be read is passed over";

    std::filesystem::remove(other);
    test::WriteText(other, path + "\n");
    EXPECT_EQ(Read_Path(rig.s, path).error().code, ErrorCode::in_use);
    EXPECT_EQ(rig.Texts(), std::vector<std::string>{"File Warning: This File is under using by other application"});
}

TEST(ReadFlow, MultiSpectraGoOrStayAsTheUserSays)
{
    struct Case {
        const char* answer;
        bool reads;
        std::int32_t kept_points;
    };
    for (const Case& c : {Case{"ALL", true, 0}, Case{"NON", true, 64}, Case{"CANCEL", false, 64}}) {
        SCOPED_TRACE(c.answer);
        Rig rig{Pressed(c.answer)};
        BootPlain(rig);
        ASSERT_TRUE(AllocateSpecBuffer(rig.g, 64, 20));
        rig.g.Slots[20].par.POINT = 64;
        rig.g.Slots[0].par.SubKind = 5;
        EXPECT_EQ(static_cast<bool>(Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "exp"))), c.reads);
        EXPECT_EQ(rig.asker.forms.at(0).form, "NMR1D_Form23");
        EXPECT_EQ(rig.g.Slots[20].par.POINT, c.kept_points);
        EXPECT_EQ(rig.g.Slots[0].par.SMODE, c.reads ? 1 : 0);
        if (!c.reads) {
            EXPECT_EQ(rig.g.Slots[0].par.SubKind, 5);
        }
    }
    Rig rig;
    BootPlain(rig);
    rig.g.Slots[3].par.POINT = 64;
    EXPECT_TRUE(ConfirmDeleteMulti(rig.s, MultiState::keep));
    EXPECT_TRUE(rig.asker.forms.empty());
}

TEST(ReadFlow, OnlyTheWindowLeavesADummyFile)
{
    for (const bool window : {false, true}) {
        Rig rig;
        BootPlain(rig);
        rig.s.may_leave_dummy_files = window;
        const auto folder = rig.folder.path() / "exp";
        ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerFid(folder)));
        EXPECT_EQ(std::filesystem::exists(folder / "SPEC.BRUF"), window);
    }
}

TEST(ReadFlow, AReadResetsTheIntensityFactorOfTheOneBefore)
{
    Rig rig;
    BootPlain(rig);
    rig.g.DataScale = 7.0F;
    ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerSpectrum(rig.folder.path() / "exp", 256, 100)));
    EXPECT_LE(rig.g.DataScale, 1.0F);
}

struct Array {
    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    DataSet& set = block->Slots[0];
    explicit Array(std::vector<float> values, std::int32_t points)
    {
        set.RowCount = static_cast<std::int32_t>(values.size());
        EXPECT_TRUE(AllocateSpecBuffer(*block, points, 0));
        set.par.POINT = points;
        std::copy(values.begin(), values.end(), set.RowValueA.begin());
        for (std::size_t row = 0; row < values.size(); ++row) {
            set.RowValueB[row] = static_cast<float>(row);
            std::iota(set.spec.DataRe[row].begin(), set.spec.DataRe[row].end(), 100.0F * static_cast<float>(row));
            std::iota(set.spec.DataIm[row].begin(), set.spec.DataIm[row].end(), 1000.0F * static_cast<float>(row));
        }
    }
};

TEST(FidIntake, SortsRowsWithTheirValuesAndKeepsTiesInOrder)
{
    struct Case {
        ArraySort order;
        std::vector<float> rows; ///< the old row number at each place
    };
    for (const Case& c : {Case{ArraySort::none, {0, 1, 2, 3}}, Case{ArraySort::ascending, {1, 3, 0, 2}},
                          Case{ArraySort::descending, {2, 0, 1, 3}}}) {
        Array array({5.0F, 0.1F, 9.0F, 0.1F}, 6);
        SortRows(array.set, c.order);
        for (std::size_t row = 0; row < 4; ++row) {
            EXPECT_EQ(array.set.RowValueB[row], c.rows[row]);
            EXPECT_EQ(array.set.spec.DataRe[row][5], 100.0F * c.rows[row] + 5.0F);
            EXPECT_EQ(array.set.spec.DataIm[row][0], 1000.0F * c.rows[row]);
        }
    }
}

TEST(FidIntake, PadsEveryRowWithZerosToAPowerOfTwo)
{
    struct Case {
        std::int32_t points, padded;
    };
    for (const Case& c : {Case{1, 1}, Case{2, 2}, Case{3, 4}, Case{1000, 1024}, Case{1024, 1024}, Case{1025, 2048}}) {
        SCOPED_TRACE(c.points);
        Array array({1.0F, 2.0F}, c.points);
        const float last = array.set.spec.DataRe[1][static_cast<std::size_t>(c.points - 1)];
        ASSERT_TRUE(PadToPowerOfTwo(*array.block));
        EXPECT_EQ(array.set.par.POINT, c.padded);
        EXPECT_EQ(array.set.par.FIDPointsRaw, c.padded);
        EXPECT_EQ(array.set.par.FIDPoints, c.points);
        EXPECT_EQ(array.set.spec.DataRe[1][static_cast<std::size_t>(c.points - 1)], last);
        for (std::int32_t i = c.points; i < c.padded; ++i)
            EXPECT_EQ(array.set.spec.DataRe[1][static_cast<std::size_t>(i)], 0.0F);
    }
}

TEST(FidIntake, TheLargestLengthIsTakenAndOneMoreRefused)
{
    const auto g = std::make_unique<GlobalBlock>();
    g->Slots[0].par.POINT = kMaxPoints + 1;
    EXPECT_EQ(PadToPowerOfTwo(*g).error().code, ErrorCode::too_large);
    g->Slots[0].par.POINT = kMaxPoints;
    EXPECT_TRUE(PadToPowerOfTwo(*g));
}

TEST(ReadNotes, AreToldOncePerReadAndStandInOneLine)
{
    Rig rig;
    rig.Boot();
    std::vector<std::vector<std::string>> told;
    rig.asker.Expect({test::Pressed("Do not Save")});
    rig.s.notes_of_read = [&](const std::vector<std::string>& notes) { told.push_back(notes); };
    rig.s.run_fft_form = [&](FftForm& form) {
        rig.g.Slots[0].Warnings = {"The count is one off.", "No date."};
        EXPECT_TRUE(form.Command3());
        return rig.g.DialogResult;
    };
    ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "exp")));
    EXPECT_FALSE(Read_Path(rig.s, rig.Path("nothing there")));
    ASSERT_EQ(told.size(), 1U) << "a read that failed has its message";
    EXPECT_EQ(NotesLine(told[0]), "2 notes on reading: The count is one off.");
    EXPECT_EQ(NotesLine({"No date."}), "1 note on reading: No date.");
    EXPECT_EQ(NotesLine({}), "");
}

TEST(ReadTicks, AreThoseOfTheNucleus)
{
    for (const auto& [nucleus, step] : {std::pair{"1H", 0.5}, std::pair{"13C", 20.0}, std::pair{"31P", 25.0}}) {
        Rig rig;
        rig.Boot();
        rig.g.settings.ax_tic_step_1h = 0.5;
        rig.g.settings.ax_tic_step_13c = 20;
        rig.g.settings.ax_tic_step_other = 25;
        test::BrukerSpec spec;
        spec.nucleus = nucleus;
        ASSERT_TRUE(Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "exp", spec)));
        EXPECT_EQ(rig.g.settings.axis_tic_step, step) << nucleus;
    }
}

} // namespace
} // namespace nmr
