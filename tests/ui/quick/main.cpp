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

QUICK_TEST_MAIN_WITH_SETUP(vellumine, Setup)

#include "main.moc"
