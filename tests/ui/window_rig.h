#pragma once
// The main window without a screen, on data whose lines are known.

#include "form_rig.h"
#include "session/read_flow.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/main_window.h"
#include "ui/theme.h"

#include <QAction>
#include <QImage>
#include <QLabel>
#include <QPainter>

namespace nmr::test {

/// A window on a spectrum of 8193 points over -2 to 12 ppm with one line at 7.26 ppm.
struct WindowRig {
    explicit WindowRig(int rows = 1)
    {
        App();
        ApplyTheme(App(), 1);
        Start_Batch(g);
        if (rows > 0) Fill(rows);
        window = std::make_unique<NMR1D_Form1>(session, asker);
        asker.SetParent(window.get());
        window->resize(1000, 600);
        Settle(*window);
    }
    void Fill(int rows)
    {
        DataSet& set = g.Slots[0];
        set.RowCount = rows;
        constexpr int kPoints = 8193;
        EXPECT_TRUE(AllocateSpecBuffer(g, kPoints, 0));
        set.par.POINT = kPoints;
        set.par.SMODE = 1;
        set.par.OBFRQ0PPM = 400;
        set.par.OBNUC = "1H";
        set.par.YFill = 0.95F;
        set.par.DispLeft = set.par.DataMax = 1000;
        for (int i = 0; i < kPoints; ++i) set.spec.XAxis[static_cast<std::size_t>(i)] = -2 + 14.0 * i / (kPoints - 1);
        const auto top = static_cast<std::size_t>(PpmToPoint(set, 7.26));
        for (int row = 0; row < rows; ++row)
            set.spec.DataRe[static_cast<std::size_t>(row)][top] = 1000.0F / static_cast<float>(row + 1);
        Show_All_Data(g);
    }
    double X(double ppm) const
    {
        QImage image(window->plot().size(), QImage::Format_RGB32);
        QPainter painter(&image);
        QtCanvas canvas(painter);
        const auto scene = window->plot().Scene();
        return SceneFrame(canvas, {0, 0, double(image.width()), double(image.height())}, scene).X(ppm);
    }
    double Width() const { return static_cast<double>(g.ViewLeft) - static_cast<double>(g.ViewRight); }
    QString LabelText(const char* name) { return Find<QLabel>(*window, name).text(); }
    QAction* Entry(const QString& caption)
    {
        for (QAction* action : window->findChildren<QAction*>())
            if (action->text() == caption) return action;
        return nullptr;
    }

    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    QtAsker asker;
    Session session{g, asker, {}, {}, {}, {}};
    std::unique_ptr<NMR1D_Form1> window;
};

} // namespace nmr::test
