#pragma once

#include <QFont>
#include <QGuiApplication>
#include <QLocale>
#include <QObject>
#include <QQuickStyle>
#include <QQuickWindow>

namespace vellumine::test {

/// The same style, font, language and renderer on every machine.
class QuickTestSetup : public QObject {
    Q_OBJECT

public:
    Q_SLOT void applicationAvailable() // NOLINT(*-member-functions-to-static): a slot
    {
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
        QLocale::setDefault(QLocale::c());
    }
};

} // namespace vellumine::test
