#include "QuickTestSetup.h"

#include <QApplication>
#include <QtQuickTest>

int main(int argumentCount, char** arguments)
{
    // started by hand it needs no screen either
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QTEST_SET_MAIN_SOURCE_PATH
    // as the program; the platform's menus want it
    const QApplication application(argumentCount, arguments);
    vellumine::test::QuickTestSetup setup;
    return quick_test_main_with_setup(argumentCount, arguments, "vellumine", nullptr, &setup);
}
