#pragma once

#include <QByteArray>
#include <QDateTime>

#include <optional>

namespace vellumine {

/// Totals over every file that was ever processed.
struct LifetimeStats {
    qint64 filesProcessed = 0; ///< with an outcome of any kind
    qint64 filesSucceeded = 0;
    qint64 originalBytes = 0; ///< of the files that succeeded, as the three below
    qint64 outputBytes = 0;
    qint64 grossBytesSaved = 0; ///< files that grew count as nothing
    qint64 netBytesSaved = 0; ///< files that grew count as negative
    qint64 largestSingleSaveBytes = 0; ///< never negative
    std::optional<QDateTime> lastProcessedAt = std::nullopt; ///< when a file last succeeded

    friend bool operator==(const LifetimeStats&, const LifetimeStats&) = default;
};

/// A JSON object with one member for each field, keys sorted, one on a line. Dates are ISO 8601 in
/// UTC with whole seconds; no date is no member.
[[nodiscard]] QByteArray toJson(const LifetimeStats& stats);

/// None unless every counter is there and a whole number within 64 bits, and the date, where there
/// is one, has the form in which it is written. Other members are ignored.
[[nodiscard]] std::optional<LifetimeStats> lifetimeStatsFromJson(const QByteArray& json);

} // namespace vellumine
