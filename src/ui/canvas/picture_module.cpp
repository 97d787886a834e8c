// The module that nmr1d-cli loads for pictures.

#include "ui/canvas/picture_writer.h"

#include <QGuiApplication>

#include <cstdio>
#include <utility>

namespace {

/// A batch machine has no session, and what the toolkit has to say of that concerns no picture.
void DropSessionWarnings(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (!text.startsWith(QLatin1String("QStandardPaths:"))) std::fprintf(stderr, "%s\n", qPrintable(text));
}

/// Pictures need fonts but no display.
void EnsureApplication()
{
    if (QCoreApplication::instance() != nullptr) return;
    qInstallMessageHandler(DropSessionWarnings);
    static int argc = 3;
    static char name[] = "nmr1d-cli", option[] = "-platform", platform[] = "offscreen";
    static char* argv[] = {name, option, platform, nullptr};
    // Lives to the end of the process: what it made must not outlast the libraries it came from.
    static auto* application = new QGuiApplication(argc, argv);
    (void)application;
}

} // namespace

extern "C" int nmr1d_make_picture(const nmr::PictureJob* job, std::string* answer)
{
    EnsureApplication();
    auto picture = nmr::MakePicture(*job);
    *answer = picture ? std::move(*picture) : picture.error().text;
    return picture ? 0 : 1;
}
