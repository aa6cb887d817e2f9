#include "stats/LifetimeStats.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>

namespace vellumine {
namespace {

struct Counter {
    const char* key;
    qint64 LifetimeStats::*field;
};

constexpr std::array counters {
    Counter { "filesProcessed", &LifetimeStats::filesProcessed },
    Counter { "filesSucceeded", &LifetimeStats::filesSucceeded },
    Counter { "originalBytes", &LifetimeStats::originalBytes },
    Counter { "outputBytes", &LifetimeStats::outputBytes },
    Counter { "grossBytesSaved", &LifetimeStats::grossBytesSaved },
    Counter { "netBytesSaved", &LifetimeStats::netBytesSaved },
    Counter { "largestSingleSaveBytes", &LifetimeStats::largestSingleSaveBytes },
};

constexpr QLatin1StringView dateKey { "lastProcessedAt" };

QString dateText(const QDateTime& date)
{
    return date.toUTC().toString(Qt::ISODate);
}

std::optional<qint64> wholeNumber(const QJsonValue& value)
{
    // What is no whole number yields the default, whichever that is.
    const qint64 number = value.toInteger(0);
    return number == value.toInteger(1) ? std::optional(number) : std::nullopt;
}

std::optional<QDateTime> dateFrom(const QJsonValue& value)
{
    const QString text = value.toString();
    QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    // Other forms of ISO 8601 can be read too, but are never written.
    if (!date.isValid() || dateText(date) != text) {
        return std::nullopt;
    }
    return date;
}

} // namespace

QByteArray toJson(const LifetimeStats& stats)
{
    QJsonObject object;
    for (const Counter& counter : counters) {
        object.insert(QLatin1StringView(counter.key), stats.*counter.field);
    }
    if (stats.lastProcessedAt) {
        object.insert(dateKey, dateText(*stats.lastProcessedAt));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

std::optional<LifetimeStats> lifetimeStatsFromJson(const QByteArray& json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    LifetimeStats stats;
    for (const Counter& counter : counters) {
        const auto number = wholeNumber(object.value(QLatin1StringView(counter.key)));
        if (!number) {
            return std::nullopt;
        }
        stats.*counter.field = *number;
    }
    const QJsonValue date = object.value(dateKey);
    if (!date.isUndefined() && !date.isNull()) {
        stats.lastProcessedAt = dateFrom(date);
        if (!stats.lastProcessedAt) {
            return std::nullopt;
        }
    }
    return stats;
}

} // namespace vellumine
