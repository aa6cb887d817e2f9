#include "cli/CommandLine.h"

#include "cli/SettingKeys.h"

#include <QFile>

#include <string_view>

namespace vellumine::cli {

namespace {

tl::unexpected<UsageError> usageError(QString text)
{
    return tl::unexpected(UsageError { std::move(text) });
}

std::optional<UsageError> applyAssignment(OptimizerSettings& settings, const std::string& bytes)
{
    const auto assignment = QByteArray::fromStdString(bytes);
    const qsizetype equals = assignment.indexOf('=');
    if (equals < 0) {
        return UsageError {
            QStringLiteral("--set wants KEY=VALUE, not \"%1\"").arg(QFile::decodeName(assignment))
        };
    }
    const auto problem = applySetting(
        settings, QFile::decodeName(assignment.first(equals)), assignment.sliced(equals + 1));
    return problem ? std::optional(UsageError { *problem }) : std::nullopt;
}

std::optional<UsageError> contradiction(const CommandLine& line)
{
    if (line.action != Action::convert) {
        return std::nullopt;
    }
    if (line.paths.empty()) {
        return UsageError { QStringLiteral("no files or folders are named") };
    }
    if (line.settings.destinationMode == DestinationMode::selectedFolder
        && !line.settings.destinationFolderURL) {
        return UsageError { QStringLiteral("destinationMode=selectedFolder needs "
                                           "destinationFolderBookmark=FOLDER") };
    }
    return std::nullopt;
}

} // namespace

tl::expected<CommandLine, UsageError> parseCommandLine(std::span<const std::string> arguments)
{
    CommandLine line;
    bool onlyPaths = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyPaths || argument.empty() || argument.front() != '-') {
            line.paths.emplace_back(argument);
        } else if (argument == "--") {
            onlyPaths = true;
        } else if (argument == "--help" || argument == "-h") {
            line.action = Action::showHelp;
        } else if (argument == "--version") {
            line.action = Action::showVersion;
        } else if (argument == "--json") {
            line.style = OutputStyle::json;
        } else if (argument == "--set") {
            if (++i == arguments.size()) {
                return usageError(QStringLiteral("--set wants KEY=VALUE"));
            }
            if (auto problem = applyAssignment(line.settings, arguments[i])) {
                return tl::unexpected(std::move(*problem));
            }
        } else {
            return usageError(QStringLiteral("there is no option \"%1\"")
                                  .arg(QFile::decodeName(argument.c_str())));
        }
    }
    if (auto problem = contradiction(line)) {
        return tl::unexpected(std::move(*problem));
    }
    return line;
}

QString usageLine()
{
    return QStringLiteral("Usage: vellumine-batch [--set KEY=VALUE]... [--json] [--] PATH...\n");
}

QString usageText()
{
    QString text = usageLine();
    text += QStringLiteral(
        "\n"
        "Optimises image files, and those in folders at any depth: jpg, jpeg, png, gif, tif, "
        "tiff,\n"
        "bmp, heic, heif, webp. Hidden files are left out. Of animations and documents with\n"
        "several pages the first picture is taken.\n"
        "\n"
        "  --set KEY=VALUE  changes a setting for this run; the program's preferences are neither\n"
        "                   read nor written\n"
        "  --json           prints one JSON object per file and line instead of text; the preview\n"
        "                   samples that it names are kept, and removing them is up to the caller\n"
        "  --help           shows this text\n"
        "  --version        shows the version\n"
        "\n"
        "Settings, each with its values:\n");
    for (const QString& key : settingKeys()) {
        text += QStringLiteral("  %1  %2\n").arg(key, -31).arg(valuesOf(key));
    }
    text += QStringLiteral(
        "\n"
        "Whether an existing file may be replaced (warnBeforeOverwrite) is asked on the terminal;\n"
        "without one the file is skipped.\n"
        "\n"
        "Exit status: 0 all well, 1 some file failed, there was none, or the results could not be\n"
        "printed, 2 the arguments make no sense.\n");
    return text;
}

} // namespace vellumine::cli
