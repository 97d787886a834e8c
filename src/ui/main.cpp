// The window program.

#include "core/settings_file.h"
#include "session/fft_form.h"
#include "session/read_flow.h"
#include "session/recovery.h"
#include "session/scripted_edits.h"
#include "session/startup.h"
#include "ui/asker_qt.h"
#include "ui/fft_dialog.h"
#include "ui/main_window.h"
#include "ui/picture_run.h"
#include "ui/quiet_asker.h"
#include "ui/run_options.h"
#include "ui/splash.h"
#include "ui/theme.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <memory>

namespace {

namespace fs = std::filesystem;
using namespace nmr;

constexpr int kUsage = 2;
constexpr char kSibling[] = "tavo2d4.exe";

/// Tables that come with the program: in the source tree of a build, or installed beside the binary.
fs::path ShippedFolder(const fs::path& program_folder)
{
    const fs::path installed = program_folder / ".." / "share" / "nmr1d";
    std::error_code ignored;
    for (fs::path at = program_folder; at.has_relative_path(); at = at.parent_path())
        if (fs::is_directory(at / "data" / "system", ignored)) return at / "data" / "system";
    return installed;
}

/// A build tree is no place for settings.
bool IsBuildTree(const fs::path& program_folder)
{
    std::error_code ignored;
    return fs::exists(program_folder.parent_path() / "CMakeCache.txt", ignored);
}

bool StartProgram(const std::string& program, const std::string& argument)
{
    const QString path = QString::fromStdString(program);
    return QFileInfo(path).isExecutable() && QProcess::startDetached(path, {QString::fromStdString(argument)});
}

/// The offscreen platform warns of what it lacks, in pictures of no interest.
void OnlyFaults(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg) std::fprintf(stderr, "nmr1d: %s\n", qPrintable(text));
}

/// A data folder for one run, with the shipped tables in it.
fs::path ScratchAppPath(const QTemporaryDir& scratch, const fs::path& shipped)
{
    const fs::path folder = scratch.path().toStdString();
    std::error_code ignored;
    for (const auto& file : fs::directory_iterator(shipped, ignored))
        fs::copy_file(file.path(), folder / file.path().filename(), ignored);
    return folder;
}

StartOptions MakeStartOptions(const RunOptions& run, const fs::path& program_folder, std::unique_ptr<Splash>& splash)
{
    StartOptions options;
    const fs::path shipped = ShippedFolder(program_folder);
    if (!run.quiet()) {
        options.command_line = CommandLineFromArgument(run.file.toStdString());
        options.app_path = ChooseAppPath(IsBuildTree(program_folder) ? fs::path() : program_folder, shipped);
    }
    options.sibling = program_folder / kSibling;
    options.show_splash = [&splash] {
        splash = std::make_unique<Splash>();
        splash->show();
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };
    options.hide_splash = [&splash] { splash.reset(); };
    return options;
}

/// One edit for each turn of the event loop, so that the window paints between them.
int RunEditScript(Session& session, NMR1D_Form1& window, ScriptAsker& asker, const EditScript& script)
{
    ScriptedEdits edits(session, asker, script);
    QTimer timer(&window);
    QObject::connect(&timer, &QTimer::timeout, &window, [&edits] { edits.Step(); });
    QTimer::singleShot(0, &window, [&] {
        edits.Begin();
        timer.start(0);
    });
    return QApplication::exec();
}

int RunWindow(QApplication& app, const RunOptions& run)
{
    const fs::path program_folder = fs::path(QApplication::applicationDirPath().toStdString());
    const auto g = std::make_unique<GlobalBlock>();
    const QTemporaryDir scratch;
    QuietAsker quiet;
    QtAsker loud;
    QtAsker& asker = run.quiet() ? quiet : loud;
    // A run of the kill test works without a user.
    const EditScript script = ParseEditScript(qEnvironmentVariable(kEditScriptVariable).toStdString());
    const bool scripted = !script.data.empty() && !run.quiet();
    ScriptAsker script_asker;
    Session session{*g, scripted ? static_cast<Asker&>(script_asker) : asker, {}, {}, {}, StartProgram};
    session.may_leave_dummy_files = !run.quiet();
    std::unique_ptr<Splash> splash;
    StartOptions options = MakeStartOptions(run, program_folder, splash);
    asker.SetBeforeQuestion([&splash] { splash.reset(); });
    if (run.quiet()) options.app_path = ScratchAppPath(scratch, ShippedFolder(program_folder));
    ApplyTheme(app, run.theme.value_or(0));
    if (Start(session, options) == StartResult::ended) return 0;
    if (run.theme) g->settings.theme = *run.theme;
    ApplyTheme(app, g->settings.theme);
    NMR1D_Form1 window(session, asker);
    asker.SetParent(&window);
    if (run.quiet()) return PictureRun(session, window, run, quiet);
    Watch_Edits(session);
    if (scripted) {
        window.show();
        return RunEditScript(session, window, script_asker, script);
    }
    session.run_fft_form = [&window](FftForm& form) { return ShowFftForm(form, &window); };
    window.show();
    QTimer::singleShot(0, &window, [&] { window.ReadCommandLineFile(); });
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    const RunOptions run = ParseRunOptions(arguments);
    if (run.help || !run.error.isEmpty()) {
        if (run.help)
            std::printf("%s", qPrintable(RunHelp()));
        else
            std::fprintf(stderr, "nmr1d: %s (--help tells the options)\n", qPrintable(run.error));
        return run.help ? 0 : kUsage;
    }
    if (run.version) {
        std::printf("nmr1d %s\n", VersionText().c_str());
        return 0;
    }
    if (run.scale != 1) qputenv("QT_SCALE_FACTOR", QByteArray::number(run.scale));
    if (run.quiet()) qInstallMessageHandler(OnlyFaults);
    if (!run.screenshot.isEmpty() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    int qt_argc = 1; // the command line is ours alone
    QApplication app(qt_argc, argv);
    QApplication::setApplicationName(QStringLiteral("nmr1d"));
    return RunWindow(app, run);
}
