#pragma once
// The one application of the test program, on no screen.

#include <QGuiApplication>

namespace nmr::test {

inline QGuiApplication& App()
{
    static int count = 1;
    static char name[] = "test_canvas";
    static char* arguments[] = {name, nullptr};
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qApp == nullptr) new QGuiApplication(count, arguments); // lives as long as the program
    return *qApp;
}

} // namespace nmr::test
