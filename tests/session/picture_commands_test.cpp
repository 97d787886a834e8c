#include "core/numbers.h"
#include "session/picture_commands.h"
#include "support/files.h"
#include "support/recording_canvas.h"
#include "support/scripted_asker.h"

#include <gmock/gmock.h>

namespace nmr {
namespace {

using namespace test;

/// Pictures as the names of their formats; a printer that reports what it is told to.
struct FakeDevices : PictureDevices {
    struct Printer : PrintDevice {
        explicit Printer(FakeDevices& owner) : devices(owner) {}
        RectD SetPaper(const PrintChoice&) override
        {
            ++devices.papers_asked;
            return devices.reported;
        }
        bool Print(const std::string& job_name, const DrawPage& draw) override
        {
            devices.job = job_name;
            draw(devices.page, {0, 0, 297 * kUnitsPerMillimetre, 210 * kUnitsPerMillimetre});
            return devices.prints;
        }
        FakeDevices& devices;
    };
    Result<std::string> Make(const PictureJob& wanted) override
    {
        jobs.push_back(wanted);
        wanted.draw(page, UnitsOf(wanted.size));
        if (fails) return Error{ErrorCode::internal, "Picture", "there is not enough memory for the picture"};
        return std::string(RowOf(wanted.format).extension);
    }
    void Copy(const std::vector<CopiedPicture>& pictures) override { copied = pictures; }
    std::unique_ptr<PrintDevice> Open(const std::string& name) override
    {
        opened = name;
        if (name == "gone") return nullptr;
        return std::make_unique<Printer>(*this);
    }
    std::vector<PictureJob> jobs;
    std::vector<CopiedPicture> copied;
    RecordingCanvas page{4, false};
    RectD reported{0, 0, 297, 210};
    std::string job, opened;
    bool fails = false, prints = true;
    int papers_asked = 0;
};

struct Rig {
    explicit Rig(std::initializer_list<ScriptedAsker::Answer> answers) : asker(answers)
    {
        EXPECT_TRUE(AllocateSpecBuffer(g, 1024, 0));
        DataSet& set = g.Slots[0];
        set.par.POINT = 1024;
        set.par.SMODE = 1;
        set.par.OBFRQ0PPM = 400;
        set.par.FileName = "/data/ethanol/1/fid.tvo1";
        for (std::size_t i = 0; i < 1024; ++i) set.spec.XAxis[i] = 0.01 * static_cast<double>(i);
        set.spec.DataRe[0][700] = 1;
        g.ViewLeft = 8;
        g.ViewRight = 6;
        session.pictures = &devices;
    }
    GlobalBlock g;
    ScriptedAsker asker;
    FakeDevices devices;
    Session session{g, asker, {}, {}, {}, {}};
};

FormAnswer Form(const PictureChoice& choice)
{
    return {"OK", choice.ToValues()};
}

FormAnswer Form(const PrintChoice& choice)
{
    return {"OK", choice.ToValues()};
}

TEST(SavePicture, WritesTheShownRangeInTheFormatOfTheName)
{
    const TempFolder folder;
    const PictureChoice wanted{PictureFormat::svg, {120, 80, true, 300}};
    Rig rig{Form(wanted), FileChoice{folder / "a.emf", 1}, Form(wanted), FileChoice{folder / "b.svg", 1}};
    SavePicture_Click(rig.session);
    EXPECT_EQ(ReadText(folder / "a.emf"), ".emf") << "the name counts";
    SavePicture_Click(rig.session);
    EXPECT_EQ(ReadText(folder / "b.svg"), ".svg");
    ASSERT_EQ(rig.devices.jobs.size(), 2U);
    EXPECT_EQ(rig.devices.jobs[1].size, wanted.size);
    int numbers = 0;
    for (const auto& text : rig.devices.page.texts) {
        const auto ppm = ParseNumber(text.text);
        if (!ppm) continue;
        ++numbers;
        EXPECT_GE(*ppm, 6);
        EXPECT_LE(*ppm, 8);
    }
    EXPECT_GT(numbers, 2);
    EXPECT_EQ(rig.devices.last->size, wanted.size) << "kept for the next picture";
}

TEST(SavePicture, LosesNothingWhenItFails)
{
    const TempFolder folder;
    WriteText(folder / "a.svg", "old");
    for (const bool folder_there : {true, false}) {
        Rig rig{Form(PictureChoice{}), FileChoice{folder_there ? folder / "a.svg" : folder / "no/a.svg", 1}};
        rig.devices.fails = folder_there;
        SavePicture_Click(rig.session);
        EXPECT_EQ(ReadText(folder / "a.svg"), "old");
        EXPECT_EQ(rig.asker.boxes.size(), 1U) << "the user is told";
    }
    Rig cancelled{FormAnswer{"CANCEL", {}}};
    SavePicture_Click(cancelled.session);
    EXPECT_TRUE(cancelled.devices.jobs.empty());
}

TEST(CopyPicture, OffersDrawingsAndABitmapTogether)
{
    Rig rig{};
    CopyPicture_Click(rig.session);
    std::string formats;
    for (const CopiedPicture& picture : rig.devices.copied) formats += picture.bytes;
    EXPECT_EQ(formats, ".svg.pdf.emf.bmp");
    rig.devices.last = PictureChoice{PictureFormat::pdf, {1900, 1900, true, 300}};
    CopyPicture_Click(rig.session);
    EXPECT_EQ(rig.devices.copied.size(), 3U) << "a poster goes without the bitmap";
}

TEST(PrintPicture, TellsWhatAPrinterCanNotDo)
{
    const PrintChoice wanted{"Laser", 1, Orientation::landscape};
    struct Case {
        const char* name;
        std::vector<ScriptedAsker::Answer> answers;
        RectD reported;
        bool prints;
        const char* title; ///< of the message
        bool sent;
        int papers_asked;
    };
    const RectD a4{0, 0, 297, 210}, a5{0, 0, 210, 148};
    const Case cases[] = {
        {"all is well", {}, a4, true, "", true, 1},
        {"other paper, abort", {Button::abort}, a5, true, "Print Size Error", false, 1},
        {"other paper, retry, then ignore", {Button::retry, Button::ignore}, a5, true, "Print Size Error", true, 2},
        {"no document", {}, a4, false, "Print Error", true, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<ScriptedAsker::Answer> answers{Form(wanted)};
        answers.insert(answers.end(), c.answers.begin(), c.answers.end());
        Rig rig{};
        rig.asker.Expect(answers);
        rig.devices.reported = c.reported;
        rig.devices.prints = c.prints;
        PrintPicture_Click(rig.session);
        EXPECT_EQ(rig.devices.opened, "Laser");
        EXPECT_EQ(rig.devices.papers_asked, c.papers_asked);
        EXPECT_EQ(rig.devices.job, c.sent ? "fid" : "");
        EXPECT_EQ(rig.asker.boxes.empty() ? "" : rig.asker.boxes.back().title, c.title);
        EXPECT_EQ(rig.g.settings.user_printer, "Laser");
    }
    Rig gone{Form(PrintChoice{"gone", 1, Orientation::portrait})};
    PrintPicture_Click(gone.session);
    EXPECT_EQ(gone.asker.boxes.back().text, "No Printer is available");
}

TEST(PrintPicture, APrinterOfAFileIsAlwaysThere)
{
    const TempFolder folder;
    Rig rig{Form(PrintChoice{kPdfPrinter, 3, Orientation::portrait}), FileChoice{folder / "p.pdf", 1}};
    PrintPicture_Click(rig.session);
    EXPECT_EQ(rig.devices.opened, "") << "no queue was asked for";
    EXPECT_EQ(ReadText(folder / "p.pdf"), ".pdf");
    EXPECT_EQ(rig.devices.jobs.at(0).size, (PictureSize{148, 210, true}));
    EXPECT_EQ(PrintChoice::From(rig.g.settings).paper, 3);
    for (const auto& line : rig.devices.page.lines) {
        EXPECT_GT(line.from.x, 10 * kUnitsPerMillimetre - 1) << "a margin is left";
        EXPECT_LT(line.to.x, 138 * kUnitsPerMillimetre + 1);
    }
}

TEST(Papers, AreNamedByTheirCode)
{
    EXPECT_EQ(PaperCaption(2, Orientation::landscape), "A4(small): 297x210 mm Landscape");
    EXPECT_EQ(PaperCaption(5, Orientation::portrait, PaperUnit::cm), "B5: 18.2x25.7 cm Portrait");
    EXPECT_EQ(PaperCaption(9, Orientation::portrait), "A4: 210x297 mm Portrait") << "what is not known is A4";
}

TEST(PictureChoice, TellsTheSizeOfItsFile)
{
    EXPECT_EQ((PictureChoice{PictureFormat::bmp, {1024, 512}}.Hint()), "1024 x 512 pixels, 1536.0 Kbyte");
    EXPECT_EQ((PictureChoice{PictureFormat::png, {1024, 512}}.Hint()), "1024 x 512 pixels, 76.8 Kbyte");
    EXPECT_EQ((PictureChoice{PictureFormat::svg, {960, 480}}.Hint()), "254.0 x 127.0 mm");
    EXPECT_THAT((PictureChoice{PictureFormat::png, {0, 5}}.Hint()), testing::StartsWith("A side of a picture"));
}

} // namespace
} // namespace nmr
