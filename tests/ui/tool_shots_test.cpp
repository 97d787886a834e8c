// Pictures of the main window with each tool open, and of the forms beside the tools, to look at: set NMR1D_SHOTS to
// a folder (and QT_SCALE_FACTOR=2 for a fine screen).

#include "analysis/integrals.h"
#include "core/list_values.h"
#include "session/display_scope.h"
#include "support/files.h"
#include "ui/form_dialogs.h"
#include "ui/theme.h"
#include "window_rig.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QDir>
#include <QFrame>
#include <QMenu>
#include <QMenuBar>

namespace nmr {
namespace {

using namespace test;

struct Sample {
    const char *name, *path;
    bool signs; ///< lines of both signs
    std::vector<std::pair<double, double>> regions;
};
const Sample kSamples[] = {
    {"1h",
     "bruker-1h-fid-strychnine-400/fid",
     false,
     {{8.2, 8.0}, {7.4, 7.0}, {6.0, 5.8}, {4.4, 4.2}, {4.0, 3.7}, {3.4, 3.0}, {1.6, 1.1}}},
    {"13c", "bruker-13c-fid-gaba-500/fid", false, {{190, 175}, {45, 38}, {37, 33}, {28, 20}}},
    {"dept", "jcamp-13c-dept-set-cytisine/dept135.fid.dx", true, {{170, 100}, {60, 48}, {40, 20}}},
};

/// One window, one file, one look.
struct Shots {
    WindowRig rig{0};
    const Sample& sample;
    QString look;

    Shots(const Sample& s, const QString& name, int theme) : sample(s), look(name)
    {
        rig.window->resize(1180, 760);
        rig.window->SetTheme(theme);
        rig.window->ReadPath(QString::fromStdString((RealData("") / s.path).string()));
        rig.g.settings.negative_peaks = s.signs;
    }
    Tools& tools() { return rig.window->tools(); }
    DataSet& set() { return rig.g.Slots[0]; }
    double At(double share) const
    {
        const auto left = static_cast<double>(rig.g.ViewLeft);
        return left + share * (static_cast<double>(rig.g.ViewRight) - left);
    }
    void Range(double left, double right)
    {
        rig.g.ViewLeft = static_cast<float>(left), rig.g.ViewRight = static_cast<float>(right);
        rig.window->RefreshAll();
    }
    void Press(const char* name) { Find<QAbstractButton>(*rig.window, name).click(); }
    void Save(const QString& what, const QPixmap& picture) const
    {
        const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", "1");
        const QString name = QString("%1/%2-%3-%4-%5.png").arg(ShotFolder(), what, sample.name, look, scale);
        EXPECT_TRUE(picture.save(name)) << name.toStdString();
    }
    void Shoot(const QString& what)
    {
        Settle(*rig.window);
        Save(what, rig.window->grab());
    }
    void Open(Tool tool)
    {
        EXPECT_TRUE(tools().Enter(tool));
        Settle(*rig.window);
    }
    /// Over the window, where it drops down.
    void ShootWithList(const QString& what, QComboBox& box)
    {
        box.showPopup();
        QPixmap picture = rig.window->grab();
        QWidget& popup = *box.view()->window();
        QPainter painter(&picture);
        painter.drawPixmap(box.mapTo(rig.window.get(), QPoint(0, box.height())), popup.grab());
        painter.end();
        box.hidePopup();
        Save(what, picture);
    }
    void Press(QPointF at) { Mouse(rig.window->plot(), QEvent::MouseButtonPress, at); }
    void Hover(double share, double y = 120)
    {
        Settle(*rig.window);
        Mouse(rig.window->plot(), QEvent::MouseMove, {rig.X(At(share)), y}, Qt::NoButton);
    }

    void Phase()
    {
        Open(Tool::phase);
        tools().SetSecond(set().par.POINT / 3);
        Shoot("phase-begin");
        Press("PhaseRobust");
        Shoot("phase");
        tools().Fix();
    }
    void BaseLine()
    {
        Open(Tool::base_line);
        Shoot("base-begin");
        Press("BasePointsAuto");
        Shoot("base-lines");
        auto& method = Find<QComboBox>(*rig.window, "BaseLineMethod");
        for (const int index : {1, 2}) {
            emit method.activated(index);
            Shoot(index == 1 ? "base-whittaker" : "base-bernstein");
        }
        Press("BaseCorCommand1");
        Shoot("base-preview");
        emit method.activated(0);
        tools().Cancel();
    }
    void Reference()
    {
        Open(Tool::reference);
        Shoot("reference-begin");
        const QPointF line(rig.X(At(0.4)), 200);
        Drag(rig.window->plot(), line, line);
        Shoot("reference");
        ShootWithList("reference-list", Find<QComboBox>(*rig.window, "ReferenceShifts"));
        tools().Cancel();
    }
    void Peaks()
    {
        Open(Tool::peaks);
        Press("ShowPeaks");
        Shoot("peaks-begin");
        tools().SetLevel(ToolAction::detect_level, 0.05);
        Press("PeakShown");
        Hover(0.5);
        Shoot("peaks");
        Press("ShowPeaks");
        rig.g.settings.interpolate_tops = 1;
        const double left = At(0), right = At(1), middle = PeakPpm(set(), set().Peaks.back());
        const double half = set().par.OBNUC == "13C" ? 5 : 0.1;
        Range(middle + half, middle - half);
        Shoot("peaks-zoom");
        rig.g.settings.interpolate_tops = 0;
        set().PeakFlags = 1;
        Range(left, right);
        Shoot("peaks-bottom");
        set().PeakFlags = 0;
        tools().Fix();
        Shoot("peaks-view");
        set().Peaks.clear();
    }
    void Integrals()
    {
        Open(Tool::integrals);
        Press("IntegralCommand3");
        Shoot("integrals-begin");
        for (const auto& [a, b] : sample.regions) Add_Integral(rig.g, a, b);
        tools().SelectIntegral(1);
        rig.window->RefreshAll();
        Shoot("integrals");
        Press("IntegralCommand3");
        Shoot("integrals-wide");
        tools().Fix();
    }
    void Regions()
    {
        Open(Tool::regions);
        set().Regions[0] = {255, static_cast<float>(At(0.1)), static_cast<float>(At(0.25))};
        set().Regions[1] = {255 * 256, static_cast<float>(At(0.4)), static_cast<float>(At(0.7))};
        Drag(rig.window->plot(), {rig.X(At(0.8)), 200}, {rig.X(At(0.9)), 200});
        Press({rig.X(At(0.28)), 200});
        Mouse(rig.window->plot(), QEvent::MouseMove, {rig.X(At(0.36)), 200});
        Shoot("regions");
        Mouse(rig.window->plot(), QEvent::MouseButtonRelease, {rig.X(At(0.36)), 200});
        tools().Fix();
    }
    void View()
    {
        Hover(0.3);
        Shoot("view");
        rig.Entry("Show Distance of Peaks/Cursol Data")->trigger();
        Shoot("distance");
        rig.Entry("Show Distance of Peaks/Cursol Data")->trigger();
    }
    void Forms()
    {
        const struct {
            const char *name, *entry;
        } entries[] = {{"form31", "Display Area"},
                       {"form33", "Set Grid"},
                       {"form-instruments", "Arrange Instrumental Data for Reference Setting"}};
        rig.g.Instruments = {{"AV-400", "BBO", "1H", 400.13, 400.13, "2024/03/07"},
                             {"AV-400", "BBO", "13C", 100.62, 100.61279, "2024/03/07"},
                             {"ECA 500", "TH5", "1H", 500.16, 500.15991, "2023/11/20"}};
        const auto expect = [&](const char* form) {
            WhenModal([this, form](QDialog& shown) {
                Settle(shown);
                Save(form, shown.grab());
            });
        };
        for (const auto& [form, entry] : entries) {
            expect(form);
            rig.Entry(entry)->trigger();
        }
        expect("form34");
        static_cast<void>(NMR1D_Form34({"34", DefaultAreas(rig.g.settings).ToValues()}, nullptr));
        rig.g.Instruments.clear();
        expect("form-instruments-empty");
        rig.Entry(entries[2].entry)->trigger();
    }
    void Menus()
    {
        for (QAction* top : rig.window->menuBar()->actions()) {
            top->menu()->adjustSize();
            Save("menu-" + top->text().remove('&').left(4), top->menu()->grab());
        }
    }
};

TEST(ToolShots, EachToolOnEachSample)
{
    if (ShotFolder().isEmpty()) GTEST_SKIP() << "NMR1D_SHOTS is not set";
    NMR1D_REAL_DATA(root, "");
    QDir().mkpath(ShotFolder());
    const std::pair<const char*, int> looks[] = {{"light", 1}, {"dark", 2}};
    for (const Sample& sample : kSamples)
        for (const auto& [name, theme] : looks) {
            Shots shots(sample, name, theme);
            ASSERT_TRUE(shots.rig.window->plot().HasSpectrum()) << sample.path;
            shots.Phase();
            shots.BaseLine();
            shots.Reference();
            shots.Peaks();
            shots.Integrals();
            shots.Regions();
            shots.View();
            shots.Forms();
            shots.Menus();
        }
}

} // namespace
} // namespace nmr
