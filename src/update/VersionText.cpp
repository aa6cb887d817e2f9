#include "update/VersionText.h"

#include "core/Product.h"

#include <algorithm>

namespace vellumine {
namespace {

bool isAsciiDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

std::optional<QString> nonEmpty(QLatin1StringView text)
{
    return text.isEmpty() ? std::nullopt : std::optional(QString(text));
}

} // namespace

QString currentVersionText()
{
    return versionText(nonEmpty(product::version), nonEmpty(product::buildNumber));
}

QString versionText(const std::optional<QString>& version, const std::optional<QString>& build)
{
    return version.value_or(QStringLiteral("0.0")) + QStringLiteral(" build ")
        + build.value_or(QStringLiteral("0"));
}

QList<qint64> versionComponents(QStringView text)
{
    QList<qint64> components;
    const auto* position = text.begin();
    while (position != text.end()) {
        const auto* runBegin = std::find_if(position, text.end(), isAsciiDigit);
        const auto* runEnd = std::find_if_not(runBegin, text.end(), isAsciiDigit);
        bool fits = false;
        const qint64 component = QStringView(runBegin, runEnd).toLongLong(&fits);
        if (fits) {
            components.append(component);
        }
        position = runEnd;
    }
    return components;
}

bool isNewer(QStringView candidate, QStringView current)
{
    QList<qint64> candidates = versionComponents(candidate);
    QList<qint64> currents = versionComponents(current);
    const qsizetype count = std::max(candidates.size(), currents.size());
    candidates.resize(count, 0);
    currents.resize(count, 0);
    return std::lexicographical_compare(
        currents.begin(), currents.end(), candidates.begin(), candidates.end());
}

} // namespace vellumine
