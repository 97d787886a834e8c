// Pictures of the forms to look at: set NMR1D_SHOTS to a folder (and QT_SCALE_FACTOR=2 for a fine screen).

#include "form_rig.h"
#include "layout/code_text.h"
#include "session/display_scope.h"
#include "session/forms.h"
#include "session/read_flow.h"
#include "session/text_forms.h"
#include "support/files.h"
#include "ui/fft_dialog.h"
#include "ui/form_dialogs.h"
#include "ui/theme.h"
#include "ui/window_dialog.h"

#include <QComboBox>
#include <QDir>
#include <QPixmap>
#include <QPushButton>

namespace nmr {
namespace {

using namespace test;

void Shoot(QWidget& widget, const QString& name)
{
    Settle(widget);
    const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", "1");
    EXPECT_TRUE(widget.grab().save(ShotFolder() + "/" + name + "-" + scale + ".png"));
}

struct Look {
    const char* name;
    std::int32_t theme;
};
constexpr Look kLooks[] = {{"light", 1}, {"dark", 2}};

// The form on a file, as "Read" opens it.
void ShootFft(const std::string& path, const QString& name)
{
    for (const Look& look : kLooks) {
        ApplyTheme(App(), look.theme);
        auto g = std::make_unique<GlobalBlock>();
        Start_Batch(*g);
        ScriptedAsker asker;
        Session session{*g, asker, {}, {}, {}, {}};
        session.run_fft_form = [&](FftForm& form) {
            FftDialog dialog(form);
            dialog.resize(1180, 780);
            Shoot(dialog, "fft-" + name + "-" + look.name);
            Drag(dialog.preview(), {300, 100}, {380, 100});
            Find<QAbstractButton>(dialog, "ShowImaginary").setChecked(true);
            Shoot(dialog, "fft-" + name + "-zoom-" + look.name);
            for (const WindowRow& row : WindowRows()) {
                EXPECT_TRUE(form.SetWindowKind(row.kind));
                WindowDialog window(
                    form, [] {}, &dialog);
                Shoot(window, QString("window-%1-%2").arg(static_cast<int>(row.kind)).arg(look.name));
            }
            return std::string("CANCEL");
        };
        const Status status = Read_Path(session, path);
        EXPECT_EQ(status.error().code, ErrorCode::cancelled) << status.error().text;
    }
}

TEST(FormShots, Transform)
{
    if (ShotFolder().isEmpty()) GTEST_SKIP() << "NMR1D_SHOTS is not set";
    App();
    QDir().mkpath(ShotFolder());
    const TempFolder folder;
    const std::string command = std::string("'" NMR1D_BINARY_DIR "/bin/make_sample_fid' '") + (folder / "s") + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    ShootFft((folder / "s") + "/1/fid", "sample");
    const auto carbon = RealData("bruker-13c-fid-600");
    if (!carbon.empty()) ShootFft(carbon.string(), "13c");
}

using Form = FormAnswer (*)(const FormRequest&, QWidget*);
struct SmallForm {
    const char* name;
    Form show;
    forms::Values values;
};

constexpr char kShownText[] =
    "\\< \\+1 13\\+0 C{\\+1 1\\+0 H} NMR, 25 \\'b0:C, \\g1 d\\g0 \\-1 C\\-0 /ppm, \\i1 J\\i0  = 7.1 Hz\\cr "
    "\\b1 bold \\c:b27200: blue\\c0 \\b0  \\f:Liberation Serif: \\p:14: serif\\>";

std::vector<SmallForm> SmallForms(const GlobalBlock& g)
{
    using namespace forms;
    Values files{{kCount, "2"},
                 {"NAME 1", "Bruker(FID)"},
                 {"REQUIRED 1", "acqus\nfid"},
                 {"NOTES 1", "procs and title are read when they are there."},
                 {"NAME 2", "JCAMP-DX"},
                 {"REQUIRED 2", "*.jdx"},
                 {"NOTES 2", ""}};
    return {{"01", NMR1D_Form01, {{kUsers, "ANNA\nBEN\nCLARA"}, {kLatest, "BEN"}}},
            {"20", NMR1D_Form20, {{kRows, "16"}}},
            {"23", NMR1D_Form23, {}},
            {"31", NMR1D_Form31, DisplayScope(g).ToValues()},
            {"33", NMR1D_Form33, GridChoice::From(g.settings).ToValues()},
            {"34", NMR1D_Form34, DefaultAreas(g.settings).ToValues()},
            {"93", NMR1D_Form93, files},
            {"101", NMR1D_Form101, {{"EXPRESSION 1", "*.jdx;*.dx"}, {"DESCRIPTION 1", "JCAMP File"}}},
            {"102", NMR1D_Form102, {}},
            {"110",
             Form110,
             {{kTitle, "Caution!"},
              {kText, "Data was Changed"},
              {kCount, "3"},
              {"BUTTON 1", "Save"},
              {"BUTTON 2", "Do not Save"},
              {"BUTTON 3", "Cancel"}}},
            {"120", Form120, {}},
            {"17",
             Form17,
             {{kFile, "/home/anna/nmr/1D_Eng.prt"},
              {kCount, "3"},
              {"KEY 1", "$"},
              {"LABEL 1", "Experiment"},
              {"KEY 2", "OBFRQ"},
              {"LABEL 2", "ObsFreq"},
              {"FORMAT 2", "#####0.0### MHz"},
              {"KEY 3", "COMNT"},
              {"LABEL 3", "Comment"},
              {"FORMAT 3", "@"}}},
            {"105", Form105, {{kText, kShownText}}},
            {"105-empty", Form105, {{kText, ""}, {kTitle, "Axis Label"}}},
            {"105-long", Form105, {{kText, Code_From_Plain(std::string(400, 'm') + "\nsecond line\nthird")}}},
            {"105ext", Form105Ext, {{kText, kShownText}}},
            {"105x", Form105_X, {}},
            {"106rtf", Form106RTF, {}},
            {"103",
             NMR1D_Form103,
             {{kCount, "1"},
              {"NAME 1", "Solvent"},
              {"VALUE 1", "CDCl3"},
              {kSampleId, "\\< strychnine in CDCl\\-1 3\\-0 \\>"},
              {kComment, "two\nlines"}}},
            {"operators", Operator_Form22, {{kNames, "Anna\nBen\nClara"}}},
            {"history",
             Form111_History,
             {{kHead, "/data/strychnine/1/fid"},
              {kCount, "2"},
              {"SUBJECT 1", "Measured"},
              {"OPERATOR 1", "Anna"},
              {"DATE 1", "2024-03-07 13:05:09"},
              {"SUBJECT 2", "FFT"},
              {"OPERATOR 2", "Ben"},
              {"DATE 2", "2024-03-08 09:00:00"}}}};
}

TEST(FormShots, SmallForms)
{
    if (ShotFolder().isEmpty()) GTEST_SKIP() << "NMR1D_SHOTS is not set";
    FormRig rig;
    rig.g.ViewLeft = 10;
    for (const Look& look : kLooks) {
        ApplyTheme(App(), look.theme);
        for (const SmallForm& form : SmallForms(rig.g)) {
            WhenModal([&](QDialog& shown) { Shoot(shown, QString("form-%1-%2").arg(form.name, look.name)); });
            static_cast<void>(form.show({form.name, form.values}, nullptr));
        }
    }
}

} // namespace
} // namespace nmr
