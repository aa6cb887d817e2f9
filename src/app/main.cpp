#include "app/AppDelegate.h"
#include "app/instance/ActivationToken.h"
#include "app/instance/FileArguments.h"
#include "app/instance/SingleInstance.h"
#include "app/windows/HeldKeys.h"
#include "core/Product.h"
#include "platform/FileDescriptor.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"
#include "platform/FileRevealer.h"
#include "platform/TerminationSignals.h"
#include "stats/StatsFolder.h"
#include "ui/translation/Translations.h"
#include "update/ProxyLookUp.h"

#include <QApplication>
#include <QDesktopServices>
#include <QIcon>
#include <QQuickStyle>
#include <QQuickWindow>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

// vellumine: the optimiser with its windows. File paths are its only arguments.

namespace vellumine {
namespace {

QList<QUrl> filesOf(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    std::error_code error;
    return fileArguments(arguments, std::filesystem::current_path(error));
}

void chooseRenderer()
{
    // Windows of a few panels and texts are drawn faster and in a third of the memory without the
    // graphics card. Qt's own variables still choose another way.
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND")
        && !qEnvironmentVariableIsSet("QSG_RHI_BACKEND")) {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    }
    QQuickWindow::setDefaultAlphaBuffer(true); // the corners of our windows are round
    QQuickStyle::setStyle(QStringLiteral("Basic"));
}

void openWithDesktop(const QUrl& url)
{
    QDesktopServices::openUrl(url);
}

int run(int argc, char** argv)
{
    platform::fillStandardStreams();
    // A program that we talk to and that goes away must not take this one along.
    std::signal(SIGPIPE, SIG_IGN);
    const ActivationToken token = ActivationToken::fromEnvironment();
    const QList<QUrl> files = filesOf(argc, argv);

    chooseRenderer();
    // Qt gets the program's name alone: a file's name is never an option.
    int nameOnly = std::min(argc, 1);
    const QApplication application(nameOnly, argv);
    QApplication::setApplicationName(QString(product::name));
    QApplication::setOrganizationName(QString(product::organisation));
    QApplication::setApplicationVersion(QString(product::version));
    QApplication::setDesktopFileName(SingleInstance::busName());
    QApplication::setQuitOnLastWindowClosed(false);
    const Translations translations;
    HeldKeys heldKeys;
    QCoreApplication::instance()->installEventFilter(&heldKeys);

    const QDBusConnection bus = QDBusConnection::sessionBus();
    SingleInstance instance(bus);
    if (instance.start(files, token) == SingleInstance::Role::handedOver) {
        return 0;
    }
    QApplication::setWindowIcon(QIcon::fromTheme(SingleInstance::busName()));

    // From then on other processes see to their files themselves.
    const auto quit = [&instance] {
        instance.leave();
        QCoreApplication::quit();
    };
    QObject::connect(
        &application, &QCoreApplication::aboutToQuit, &instance, &SingleInstance::leave);

    // Until all is cleared up: a terminal that is closed asks twice.
    platform::TerminationSignals signals;
    platform::DesktopFileRevealer revealer(bus, openWithDesktop);
    AppDelegate delegate({
        .models = {
            .preferences = userPreferences(),
            .statsFolder = statsFolder(),
            .updateSource = UpdateChecker::productHomePage(),
            .temporaryFolder = platform::temporaryFolder(),
            .executableFolder
            = platform::toPath(platform::fileUrl(QCoreApplication::applicationDirPath())),
        },
        .bus = bus,
        .reveal = [&revealer](const QUrl& file) { revealer.reveal(file); },
        .openPage = openWithDesktop,
        .quit = quit,
    });
    QObject::connect(
        &instance, &SingleInstance::activationRequested, &delegate, &AppDelegate::showMainWindow);
    QObject::connect(&instance, &SingleInstance::openRequested, &delegate, &AppDelegate::open);
    QObject::connect(
        &instance, &SingleInstance::preferencesRequested, &delegate, &AppDelegate::showPreferences);
    QObject::connect(&instance, &SingleInstance::quitRequested, &delegate, quit);
    signals.listen([&quit](int) { quit(); });
    delegate.launch(token);
    if (!files.isEmpty()) {
        delegate.process(files);
    }
    return QCoreApplication::exec();
}

} // namespace
} // namespace vellumine

int main(int argc, char** argv)
{
    const int status = vellumine::run(argc, argv);
    if (vellumine::isAnyLookUpAtWork()) {
        // Nothing of ours is left that could be torn down.
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}
