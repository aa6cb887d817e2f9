#pragma once

#include "app/AppDelegate.h"
#include "core/PreferencesFile.h"
#include "platform/FilePath.h"
#include "support/TestImages.h"
#include "ui/results/ResultsListModel.h"

#include <QGuiApplication>
#include <QImage>
#include <QTest>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

namespace vellumine::test {

/// The program in a world of its own: its preferences and folders are the test's, nothing is opened
/// and nothing is loaded.
class TestProgram {
protected:
    TestProgram()
    {
        std::filesystem::create_directory(m_folder / "temporary");
        std::filesystem::create_directory(m_folder / "pictures");
    }

    AppDelegate& delegate()
    {
        if (!m_delegate) {
            m_delegate = std::make_unique<AppDelegate>(AppDelegate::Surroundings {
                .models = {
                    .preferences = m_preferences.open(),
                    .statsFolder = QString::fromStdString((m_folder / "stats").string()),
                    // A check of such an address fails by itself.
                    .updateSource = { .homePage = QUrl(QStringLiteral("none:")) },
                    .temporaryFolder = m_folder / "temporary",
                    .executableFolder = {},
                },
                .bus = m_bus,
                .reveal = [](const QUrl&) {},
                .openPage = [](const QUrl&) {},
                .quit =
                    [this] {
                        ++m_quits;
                        m_atQuit();
                    },
                .windowGrowingTime = m_windowGrowingTime,
            });
            // Written by this program itself, so that no encoder is needed.
            m_delegate->models().settings().setOutputFormat(OutputFormat::png);
        }
        return *m_delegate;
    }

    ProcessingModel& model() { return delegate().models().processingModel(); }

    /// A file with the name of a picture that is none: it fails, and that is a result as well.
    QUrl brokenPicture(const char* name)
    {
        writeFile(m_folder / "pictures" / name, std::string_view("no picture"));
        return platform::fileUrl(m_folder / "pictures" / name);
    }

    bool waitForResults(qsizetype count)
    {
        return QTest::qWaitFor(
            [&] { return model().results().size() == count && !model().isProcessing(); }, 20000);
    }

    /// Converts a picture in the main window, and opens the comparison of it. Null where that
    /// fails.
    QWindow* openComparison()
    {
        QImage picture(40, 30, QImage::Format_RGB32);
        picture.fill(Qt::red);
        const auto path = m_folder / "pictures" / "a.bmp";
        if (!picture.save(QString::fromStdString(path.string()), "bmp")) {
            return nullptr;
        }
        delegate().process({ platform::fileUrl(path) });
        auto* results = delegate().mainWindow()->property("results").value<ResultsListModel*>();
        if (!waitForResults(1) || !results) {
            return nullptr;
        }
        results->compare(0);
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            if (window->title() == QStringLiteral("Review a.png")) {
                return window;
            }
        }
        return nullptr;
    }

    // The world that the program finds when it is first asked for.
    QDBusConnection m_bus { QStringLiteral("no such connection") };
    std::chrono::milliseconds m_windowGrowingTime { 0 };

    TemporaryFolder m_folder;
    PreferencesFile m_preferences;
    int m_quits = 0;
    std::function<void()> m_atQuit = [] {};
    std::unique_ptr<AppDelegate> m_delegate;
};

} // namespace vellumine::test
