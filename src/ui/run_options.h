#pragma once
// The command line of the window.

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace nmr {

struct RunOptions {
    QString file;
    bool help = false, version = false;
    bool probe = false;    ///< --startup-probe
    QString screenshot;    ///< picture to make; empty: an ordinary run
    QString form;          ///< --form: the form to take a picture of instead of the window
    QSize size{1180, 760}; ///< of the pictured window
    bool sized = false;    ///< --size was given: it counts for a pictured form too
    double scale = 1;
    std::optional<int> theme; ///< 1 light, 2 dark
    std::optional<std::pair<double, double>> range;
    double height = 1; ///< magnification
    QString error;     ///< what is wrong with the command line

    /// Runs that make a picture or a measurement touch nobody's settings and ask nothing.
    bool quiet() const { return probe || !screenshot.isEmpty(); }
};

RunOptions ParseRunOptions(const QStringList& arguments);
QString RunHelp();

} // namespace nmr
