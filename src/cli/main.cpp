#include "batch/FileInputResolver.h"
#include "batch/PreviewSamples.h"
#include "batch/ProcessingModel.h"
#include "cli/CommandLine.h"
#include "cli/Report.h"
#include "cli/StandardOutput.h"
#include "cli/Terminal.h"
#include "confined/client/ConfinedDecoders.h"
#include "pipeline/OverwritePrompt.h"
#include "platform/FileDescriptor.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"
#include "platform/TerminationSignals.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

// vellumine-batch: the optimiser without a window, for scripts and servers.

namespace vellumine::cli {
namespace {

enum ExitStatus { allWell = 0, someFailed = 1, badUsage = 2 };

/// The given paths as URLs. Paths that do not exist are reported and left out, unless their names
/// are pictures': those fail in the batch.
QList<QUrl> inputURLs(const std::vector<std::filesystem::path>& paths, Report& report)
{
    QList<QUrl> urls;
    for (const std::filesystem::path& given : paths) {
        std::error_code error;
        const std::filesystem::path path = platform::absoluteByText(given);
        const QUrl url = platform::fileUrl(path);
        if (FileInputResolver::hasSupportedExtension(url) || std::filesystem::exists(path, error)) {
            urls.append(url);
        } else {
            report.add(failureResult(url, ImageOptimizerError(UnreadableImage {})));
        }
    }
    return urls;
}

std::filesystem::path programFolder()
{
    return platform::toPath(platform::fileUrl(QCoreApplication::applicationDirPath()));
}

std::string confinementText()
{
    const auto confined = confined::ConfinedDecoders::ofProgram(programFolder());
    return confined::confinementText(confined ? confined->confinement() : std::nullopt);
}

/// Files that end a decoder are worth a word to whoever looks into them.
void reportDeaths(const confined::ConfinedDecoders* confined)
{
    if (confined != nullptr && confined->deathCount() > 0) {
        std::fprintf(stderr, "vellumine-batch: the decoder was replaced %zu times\n",
            confined->deathCount());
    }
}

int convert(const CommandLine& line, platform::TerminationSignals& signals)
{
    Report report(line.style);
    OverwritePrompt prompt([&](const QUrl& url, const OverwritePrompt::Answer& answer) {
        report.hideProgress();
        answer(askOnTerminal(url, signals.descriptor()));
        report.showProgress();
    });
    ConversionEnvironment environment;
    environment.confirmOverwrite = [&prompt](const QUrl& url) { return prompt.ask(url); };
    environment.executableFolder = programFolder();
    const auto confined = confined::ConfinedDecoders::ofProgram(programFolder());
    if (confined) {
        environment.openImage = confined::opener(confined);
    }

    // The samples that JSON names are for whoever reads it. Text names none.
    environment.comparisonSamples
        = line.style == OutputStyle::json ? ComparisonSamples::make : ComparisonSamples::leaveOut;
    PreviewSamples samples(environment.temporaryFolder);
    // The preferences are those of the command line, and no statistics are kept.
    ProcessingModel model({
        .snapshot = [&line] { return line.settings; },
        .record =
            [&report, &samples](const ProcessingResult& result) {
                const ProcessingResult given = samples.given(result);
                if (!report.add(given)) {
                    samples.add(given); // nobody knows of them
                }
            },
        .optimize = optimizeIn(environment),
        .folderAccess = { .securityScope = environment.securityScope },
        .activeProcessorCount = QThread::idealThreadCount(),
        .debounce = std::chrono::milliseconds(0),
    });
    QObject::connect(&model, &ProcessingModel::progressChanged, &model, [&] {
        if (model.finishedCount() == 0 && model.totalCount() > 0) {
            report.setFileCount(static_cast<std::size_t>(model.totalCount()));
        }
    });

    bool isInterrupted = false;
    signals.listen([&](int number) {
        const bool isImpatient = isInterrupted || number != SIGINT;
        isInterrupted = true;
        prompt.close();
        model.stop();
        if (isImpatient) {
            model.interrupt();
        }
        if (!model.isProcessing()) {
            QCoreApplication::quit();
        }
    });
    const QList<QUrl> urls = inputURLs(line.paths, report);
    if (!urls.isEmpty()) {
        model.setOnComplete([] { QCoreApplication::quit(); });
        model.process(urls);
        QCoreApplication::exec();
    }
    reportDeaths(confined.get());
    if (isInterrupted) {
        report.finish();
        std::fprintf(stderr, "%s\n", model.statusText().toUtf8().constData());
        return someFailed;
    }
    if (report.isEmpty()) {
        std::fprintf(stderr, "%s\n", model.statusText().toUtf8().constData());
        return someFailed;
    }
    report.finish();
    return report.hasFailures() || !report.isWhole() ? someFailed : allWell;
}

int show(const QByteArray& text)
{
    return StandardOutput().print(text) ? allWell : someFailed;
}

int run(int argc, char** argv)
{
    platform::fillStandardStreams();
    // A reader that goes away must not end the conversions half way.
    std::signal(SIGPIPE, SIG_IGN);
    // Before the application sees them, which takes out what it thinks is its own.
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    platform::TerminationSignals signals;
    const QCoreApplication application(argc, argv);
    const auto line = parseCommandLine(arguments);
    if (!line) {
        std::fprintf(stderr, "vellumine-batch: %s\n%sMore is told by vellumine-batch --help.\n",
            line.error().text.toUtf8().constData(), usageLine().toUtf8().constData());
        return badUsage;
    }
    switch (line->action) {
    case Action::showHelp:
        return show(usageText().toUtf8());
    case Action::showVersion:
        return show("vellumine-batch " VELLUMINE_VERSION " (" VELLUMINE_BUILD_NUMBER ")\n"
            + QByteArray::fromStdString(confinementText()) + '\n');
    case Action::convert:
        return convert(*line, signals);
    }
    Q_UNREACHABLE();
}

} // namespace
} // namespace vellumine::cli

int main(int argc, char** argv)
{
    return vellumine::cli::run(argc, argv);
}
