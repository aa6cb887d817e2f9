#include "platform/UniqueName.h"

#include <QUuid>

namespace vellumine::platform {
namespace {

std::string textOf(const QUuid& uuid)
{
    return uuid.toString(QUuid::WithoutBraces).toUpper().toStdString();
}

bool isOurUuid(std::string_view text)
{
    const QUuid uuid
        = QUuid::fromString(QLatin1StringView(text.data(), static_cast<qsizetype>(text.size())));
    return uuid.variant() == QUuid::DCE && uuid.version() == QUuid::Random && textOf(uuid) == text;
}

} // namespace

std::string uniqueName(std::string_view prefix, std::string_view suffix)
{
    return std::string(prefix) + textOf(QUuid::createUuid()) + std::string(suffix);
}

bool isUniqueName(std::string_view name, std::string_view prefix, std::string_view suffix)
{
    return name.size() > prefix.size() + suffix.size() && name.starts_with(prefix)
        && name.ends_with(suffix)
        && isOurUuid(name.substr(prefix.size(), name.size() - prefix.size() - suffix.size()));
}

} // namespace vellumine::platform
