#include "ui/picture_run.h"

#include "formats/csv_choice.h"
#include "session/display_scope.h"
#include "session/forms.h"
#include "session/menu.h"
#include "session/picture_commands.h"
#include "session/read_flow.h"
#include "ui/fft_dialog.h"
#include "ui/form_table.h"
#include "ui/help_sheet.h"
#include "ui/main_window.h"
#include "ui/quiet_asker.h"
#include "ui/run_options.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace nmr {
namespace {

constexpr int kFailed = 1, kUnreadable = 3, kUnwritable = 6;
constexpr char kTransformForm[] = "NMR1D_Form11";
constexpr int kStartTimeField = 22; // of /proc/self/stat, in clock ticks since boot

/// Milliseconds since the process began, as the kernel has it; its clock ticks every 10 ms.
double MillisecondsSinceStart()
{
    std::ifstream stat("/proc/self/stat");
    std::string text;
    std::getline(stat, text);
    // The program's name may hold anything but ends with the last bracket; the field behind it is the third.
    std::size_t at = text.rfind(')') + 1;
    for (int field = 3; field < kStartTimeField; ++field) at = text.find(' ', at + 1);
    const double ticks = std::strtod(text.c_str() + at, nullptr);
    std::timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return (static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 -
            ticks / static_cast<double>(sysconf(_SC_CLK_TCK))) *
           1000;
}

double PeakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

bool Read(Session& session, NMR1D_Form1& window, const RunOptions& run)
{
    if (run.file.isEmpty()) return true;
    window.ReadPath(run.file);
    if (!window.plot().HasSpectrum()) return false;
    GlobalBlock& g = session.g;
    if (run.range) {
        g.ViewLeft = static_cast<float>(run.range->first);
        g.ViewRight = static_cast<float>(run.range->second);
    }
    if (run.height != 1) SetMagnification(g.Slots[0], run.height);
    window.RefreshAll();
    return true;
}

int Probe(Session& session, NMR1D_Form1& window, const RunOptions& run)
{
    int code = kFailed;
    window.first_paint_done = [&] {
        std::printf("first paint: %.0f ms, %.1f MB\n", MillisecondsSinceStart(), PeakMegabytes());
        code = 0;
        if (!run.file.isEmpty()) {
            QElapsedTimer timer;
            timer.start();
            if (!Read(session, window, run)) code = kUnreadable;
            window.plot().repaint();
            std::printf("read and shown: %.0f ms, %.1f MB\n", static_cast<double>(timer.nsecsElapsed()) * 1e-6,
                        PeakMegabytes());
        }
        QApplication::exit(); // not quit(), which would close the window with its questions
    };
    window.show();
    QApplication::exec();
    return code;
}

/// Waits for a form to come up, takes its picture, and closes it.
class FormPicture : public QObject {
public:
    FormPicture(QString file, QSize size) : file_(std::move(file)), size_(size)
    {
        connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
        timer_.start(50);
    }
    bool saved() const { return saved_; }

private:
    void Look()
    {
        QWidget* form = QApplication::activeModalWidget();
        // A few rounds for previews and layouts to settle.
        if (form == nullptr) return;
        if (++rounds_ == 1 && size_.isValid()) form->resize(size_);
        if (rounds_ < 6) return;
        if (!saved_) saved_ = form->grab().save(file_);
        form->close();
        if (form->isVisible()) form->hide();
    }
    QString file_;
    QSize size_; ///< invalid: as the form has it
    QTimer timer_;
    int rounds_ = 0;
    bool saved_ = false;
};

/// Forms that a command opens with values of its own.
struct FormCommand {
    const char* form;
    void (*run)(Session&);
};
void ShowDefaultAreas(Session& s)
{
    s.asker.Form({forms::kDefaultAreas, DefaultAreas(s.g.settings).ToValues()});
}

constexpr FormCommand kFormCommands[] = {{forms::kDisplayScope, m31_Click},
                                         {forms::kDefaultAreas, ShowDefaultAreas},
                                         {forms::kGrid, m30_Click},
                                         {forms::kFileTypes, m121_Click},
                                         {forms::kProcessableFiles, m47_Click},
                                         {forms::kHistoryForm, m209_Click},
                                         {forms::kOperatorForm, m43_Click},
                                         {forms::kParameterList, BasicCommand1_Click},
                                         {forms::kParameterEditor, m292_Click},
                                         {forms::kParameterFile, m42_Click},
                                         {forms::kSavePicture, SavePicture_Click},
                                         {forms::kPrint, PrintPicture_Click}};

/// Forms that a read shows by itself, for files that need them.
constexpr const char* kReadForms[] = {kCsvForm, forms::kArrayData, forms::kPhaseRow, forms::kFourierState,
                                      forms::kNumberType};

bool IsReadForm(const QString& name)
{
    return std::ranges::any_of(kReadForms, [&](const char* form) { return name == QLatin1String(form); });
}

bool OpenForm(Session& session, NMR1D_Form1& window, const QString& name)
{
    const std::string form = name.toStdString();
    for (const FormCommand& row : kFormCommands)
        if (form == row.form) return row.run(session), true;
    if (name == QLatin1String("HelpSheet")) return ShowHelpSheet(&window), true;
    const FormFunction show = FindForm(form);
    if (show != nullptr) show({form, {}}, &window);
    return show != nullptr;
}

int TakeFormPicture(Session& session, NMR1D_Form1& window, const RunOptions& run)
{
    FormPicture picture(run.screenshot, run.sized ? run.size : QSize());
    const bool transform = run.form == QLatin1String(kTransformForm);
    if (transform) {
        session.run_fft_form = [&](FftForm& form) { return ShowFftForm(form, &window); };
        Read(session, window, run);
    } else if (!Read(session, window, run) && !IsReadForm(run.form)) {
        return kUnreadable;
    } else if (picture.saved()) {
        return 0; // the form came up on the way
    } else if (!OpenForm(session, window, run.form)) {
        std::fprintf(stderr, "nmr1d: there is no form %s\n", qPrintable(run.form));
        return kFailed;
    }
    return picture.saved() ? 0 : kUnwritable;
}

} // namespace

int PictureRun(Session& session, NMR1D_Form1& window, const RunOptions& run, QuietAsker& asker)
{
    if (run.probe) return Probe(session, window, run);
    window.setWindowState(Qt::WindowNoState);
    window.resize(run.size);
    window.show();
    if (!run.form.isEmpty()) {
        asker.shown_form = run.form.toStdString();
        return TakeFormPicture(session, window, run);
    }
    if (!Read(session, window, run)) return kUnreadable;
    QApplication::processEvents();
    if (!window.grab().save(run.screenshot)) {
        std::fprintf(stderr, "nmr1d: %s can't be written\n", qPrintable(run.screenshot));
        return kUnwritable;
    }
    return asker.failed ? kFailed : 0;
}

} // namespace nmr
