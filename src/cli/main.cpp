#include "cli/BatchRun.h"
#include "cli/CommandLine.h"
#include "cli/InputFiles.h"
#include "cli/Report.h"
#include "cli/Terminal.h"
#include "pipeline/OverwritePrompt.h"
#include "platform/FilePath.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

// vellumine-batch: the optimiser without a window, for scripts and servers.

namespace vellumine::cli {
namespace {

enum ExitStatus { AllWell = 0, SomeFailed = 1, BadUsage = 2 };

void removeSamples(const std::vector<ComparisonPreview>& previews)
{
    for (const ComparisonPreview& preview : previews) {
        QFile::remove(preview.sourceSampleURL.toLocalFile());
        QFile::remove(preview.outputSampleURL.toLocalFile());
    }
}

int convert(const CommandLine& line)
{
    const std::vector<InputFile> files = inputFiles(line.paths);
    if (files.empty()) {
        std::fputs("No supported image files found\n", stderr);
        return SomeFailed;
    }
    OverwritePrompt prompt(
        [](const QUrl& url, const OverwritePrompt::Answer& answer) { answer(askOnTerminal(url)); });
    ConversionEnvironment environment;
    environment.confirmOverwrite = [&prompt](const QUrl& url) { return prompt.ask(url); };
    environment.executableFolder
        = platform::toPath(platform::fileUrl(QCoreApplication::applicationDirPath()));

    Report report(line.style, files.size());
    std::vector<ComparisonPreview> previews;
    BatchRun run(files, line.settings, environment);
    run.start(
        [&](const ProcessingResult& result) {
            report.add(result);
            if (result.comparisonPreview) {
                previews.push_back(*result.comparisonPreview);
            }
        },
        [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
    report.finish();
    if (line.style == OutputStyle::Text) {
        removeSamples(previews); // nobody was told of them
    }
    return report.hasFailures() ? SomeFailed : AllWell;
}

int run(int argc, char** argv)
{
    // A reader that goes away must not end the conversions half way.
    std::signal(SIGPIPE, SIG_IGN);
    // Before the application sees them, which takes out what it thinks is its own.
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const QCoreApplication application(argc, argv);
    const auto line = parseCommandLine(arguments);
    if (!line) {
        std::fprintf(stderr, "vellumine-batch: %s\n\n%s", line.error().text.toUtf8().constData(),
            usageText().toUtf8().constData());
        return BadUsage;
    }
    switch (line->action) {
    case Action::ShowHelp:
        std::fputs(usageText().toUtf8().constData(), stdout);
        return AllWell;
    case Action::ShowVersion:
        std::puts("vellumine-batch " VELLUMINE_VERSION " (" VELLUMINE_BUILD_NUMBER ")");
        return AllWell;
    case Action::Convert:
        return convert(*line);
    }
    Q_UNREACHABLE();
}

} // namespace
} // namespace vellumine::cli

int main(int argc, char** argv)
{
    return vellumine::cli::run(argc, argv);
}
