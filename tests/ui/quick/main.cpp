#include <QFont>
#include <QGuiApplication>
#include <QLocale>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQuickTest>

namespace {

/// The same style, font, language and renderer on every machine.
class Setup : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void applicationAvailable()
    {
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
        QLocale::setDefault(QLocale::c());
    }
};

} // namespace

int main(int argumentCount, char** arguments)
{
    // started by hand it needs no screen either
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QTEST_SET_MAIN_SOURCE_PATH
    Setup setup;
    return quick_test_main_with_setup(argumentCount, arguments, "vellumine", nullptr, &setup);
}

#include "main.moc"
