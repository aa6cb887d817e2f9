#include "app/instance/FileArguments.h"

#include "platform/FilePath.h"

namespace vellumine {
namespace {

/// Whether a scheme and "//" stand in front, as in no sensible name of a file.
bool isUrl(const std::string& argument)
{
    const std::size_t colon = argument.find("://");
    return colon != std::string::npos && colon > 0
        && argument.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                      "0123456789+-.")
        == colon;
}

} // namespace

QList<QUrl> fileArguments(
    std::span<const std::string> arguments, const std::filesystem::path& workingFolder)
{
    QList<QUrl> urls;
    for (const std::string& argument : arguments) {
        if (argument.empty()) {
            continue;
        }
        if (isUrl(argument)) {
            const QUrl file = platform::onThisMachine(
                QUrl::fromEncoded(QByteArray::fromStdString(argument), QUrl::TolerantMode));
            if (!file.isEmpty()) {
                urls.append(file);
            }
            continue;
        }
        urls.append(platform::fileUrl(workingFolder / argument));
    }
    return urls;
}

} // namespace vellumine
