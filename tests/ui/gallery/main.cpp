// Pictures of the views, one for every scene:
//     ui_gallery [--locale NAME] --output FOLDER SCENE.qml...
// A scene is an Item or a Window with stand-ins for what it shows. QT_SCALE_FACTOR sets the scale.

#include "ui/theme/Motion.h"
#include "ui/theme/ProductInfo.h"
#include "ui/translation/Translations.h"

#include <QCommandLineParser>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>

#include <chrono>
#include <memory>

namespace {

/// Before anything is shown: what moves would be seen half-way.
void stopMotion(QQmlEngine& engine)
{
    QQmlComponent component(&engine);
    component.setData("import QtQml\nimport Vellumine\nQtObject {}", QUrl()); // has the types known
    const std::unique_ptr<QObject> made(component.create());
    engine.singletonInstance<vellumine::Motion*>(qmlTypeId("Vellumine", 1, 0, "Motion"))
        ->setReduced(true);
}

/// What the program says where the system has everything.
void confine(QQmlEngine& engine)
{
    engine.singletonInstance<vellumine::ProductInfo*>(qmlTypeId("Vellumine", 1, 0, "ProductInfo"))
        ->setConfinementText([] {
            return QStringLiteral("Pictures are decoded in a process of their own, confined by a "
                                  "system call filter, Landlock 7, no new privileges, a memory "
                                  "limit and a processor time limit.");
        });
}

/// With the dialogs over it that newer versions of Qt draw in windows of their own.
QImage pictureOf(QQuickWindow& window)
{
    QImage picture = window.grabWindow();
    QPainter painter(&picture);
    const QWindowList others = QGuiApplication::topLevelWindows();
    for (QWindow* other : others) {
        auto* const dialog = qobject_cast<QQuickWindow*>(other);
        if (dialog != nullptr && dialog->isVisible() && dialog->transientParent() == &window) {
            painter.drawImage(dialog->position() - window.position(), dialog->grabWindow());
        }
    }
    return picture;
}

/// Renders one scene; an empty text, or what went wrong.
QString renderScene(QQmlEngine& engine, const QString& scene, const QString& picture)
{
    QQmlComponent component(&engine, QUrl::fromLocalFile(QFileInfo(scene).absoluteFilePath()));
    const std::unique_ptr<QObject> root(component.create());
    if (!root) {
        return component.errorString();
    }
    std::unique_ptr<QQuickWindow> frame;
    auto* window = qobject_cast<QQuickWindow*>(root.get());
    if (window == nullptr) {
        auto* item = qobject_cast<QQuickItem*>(root.get());
        if (item == nullptr) {
            return QStringLiteral("is neither an item nor a window");
        }
        frame = std::make_unique<QQuickWindow>();
        window = frame.get();
        window->resize(item->size().toSize());
        item->setParentItem(window->contentItem());
    }
    window->show();
    // A scene that waits for something says when it is there.
    const QDeadlineTimer deadline(std::chrono::seconds(10));
    while (root->property("ready") == QVariant(false) && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    }
    // Layouts and popups settle with the frames that follow the first.
    for (int frameCount = 0; frameCount < 4; ++frameCount) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        // Nothing lies under the pointer, wherever it was when the window came.
        QEvent leaving(QEvent::Leave);
        QCoreApplication::sendEvent(window, &leaving);
        (void)pictureOf(*window);
    }
    const bool written = pictureOf(*window).save(picture);
    if (frame) {
        qobject_cast<QQuickItem*>(root.get())->setParentItem(nullptr);
    }
    return written ? QString() : QStringLiteral("cannot write ") + picture;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QQuickWindow::setDefaultAlphaBuffer(true); // the corners of our windows are round
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argumentCount, arguments);
    QGuiApplication::setFont(QFont(QStringLiteral("Inter")));

    QCommandLineParser parser;
    const QCommandLineOption output(
        QStringLiteral("output"), QStringLiteral("Where to"), QStringLiteral("folder"));
    const QCommandLineOption locale(
        QStringLiteral("locale"), QStringLiteral("Which language"), QStringLiteral("name"));
    parser.addOptions({ output, locale });
    parser.addPositionalArgument(QStringLiteral("scene"), QStringLiteral("Scenes"));
    parser.process(application);
    const QLocale chosen = parser.isSet(locale) ? QLocale(parser.value(locale)) : QLocale::c();
    QLocale::setDefault(chosen);
    const vellumine::Translations translations(chosen.uiLanguages());
    QGuiApplication::setLayoutDirection(chosen.textDirection());

    const QDir folder(parser.value(output));
    (void)folder.mkpath(QStringLiteral("."));
    QTextStream errors(stderr);
    int failures = 0;
    const QStringList scenes = parser.positionalArguments();
    for (const QString& scene : scenes) {
        QQmlEngine engine;
        stopMotion(engine);
        confine(engine);
        const QString picture
            = folder.filePath(QFileInfo(scene).completeBaseName() + QStringLiteral(".png"));
        const QString failure = renderScene(engine, scene, picture);
        if (!failure.isEmpty()) {
            errors << scene << ": " << failure << '\n';
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
}
