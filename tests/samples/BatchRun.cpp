#include "samples/BatchRun.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>

#include <chrono>

namespace vellumine::test {

namespace {

constexpr std::chrono::milliseconds patience = std::chrono::minutes(10);

QString fromPath(const std::filesystem::path& path)
{
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

QProcessEnvironment environmentIn(const std::filesystem::path& scratch)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("VELLUMINE_CWEBP_PATH"));
    for (const char* name :
        { "HOME", "TMPDIR", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME" }) {
        const std::filesystem::path folder
            = scratch / (name == std::string_view("TMPDIR") ? "temporary" : "home");
        std::filesystem::create_directories(folder);
        environment.insert(QString::fromLatin1(name), fromPath(folder));
    }
    return environment;
}

void readResults(const QByteArray& output, BatchRun& run)
{
    for (const QByteArray& line : output.split('\n')) {
        if (line.trimmed().isEmpty()) {
            continue;
        }
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        const std::filesystem::path source = pathOf(object.value(QStringLiteral("sourceURL")));
        if (source.empty()) {
            run.faults.push_back("no result: " + line.toStdString());
        } else if (!run.results.emplace(source, object).second) {
            run.faults.push_back("two results for " + source.string());
        }
    }
}

void readErrors(const QByteArray& errors, BatchRun& run)
{
    for (const char* sign :
        { "AddressSanitizer", "LeakSanitizer", "ThreadSanitizer", "runtime error:" }) {
        if (errors.contains(sign)) {
            run.faults.push_back(errors.toStdString());
            return;
        }
    }
}

} // namespace

std::filesystem::path pathOf(const QJsonValue& url)
{
    // The bytes of a name need not be text, so that QUrl cannot give them back.
    const QByteArray encoded = url.toString().toUtf8();
    const QByteArray scheme = "file://";
    return encoded.startsWith(scheme)
        ? QByteArray::fromPercentEncoding(encoded.mid(scheme.size())).toStdString()
        : std::filesystem::path();
}

BatchRun runBatch(const std::vector<std::string>& settings,
    const std::vector<std::filesystem::path>& paths, const std::filesystem::path& scratch)
{
    QStringList arguments { QStringLiteral("--json") };
    for (const std::string& setting : settings) {
        arguments << QStringLiteral("--set") << QString::fromStdString(setting);
    }
    for (const std::filesystem::path& path : paths) {
        arguments << fromPath(path);
    }

    QProcess process;
    process.setProcessEnvironment(environmentIn(scratch));
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QStringLiteral(VELLUMINE_BATCH), arguments);
    BatchRun run;
    if (!process.waitForFinished(static_cast<int>(patience.count()))) {
        run.faults.push_back("did not end: " + process.errorString().toStdString());
        process.kill();
        process.waitForFinished();
    }
    const QByteArray errors = process.readAllStandardError();
    if (process.exitStatus() != QProcess::NormalExit) {
        run.faults.push_back("crashed: " + errors.toStdString());
    } else if (process.exitCode() != 0 && process.exitCode() != 1) {
        run.faults.push_back(
            "ended with " + std::to_string(process.exitCode()) + ": " + errors.toStdString());
    }
    readResults(process.readAllStandardOutput(), run);
    readErrors(errors, run);
    return run;
}

std::vector<std::filesystem::path> temporaryLeftovers(const std::filesystem::path& scratch)
{
    std::vector<std::filesystem::path> leftovers;
    for (const auto& entry : std::filesystem::directory_iterator(scratch / "temporary")) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with("vellumine-preview-") || !name.ends_with(".png")) {
            leftovers.push_back(entry.path());
        }
    }
    return leftovers;
}

} // namespace vellumine::test
