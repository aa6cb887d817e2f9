#include <QApplication>
#include <QQuickStyle>
#include <QQuickWindow>
#include <gtest/gtest.h>

int main(int argumentCount, char** arguments)
{
    // Windows are made, and nobody needs to see them.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
