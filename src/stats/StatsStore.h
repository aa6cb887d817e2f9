#pragma once

#include "stats/LifetimeStats.h"

#include <QObject>
#include <QString>

#include <functional>

namespace vellumine {

struct ProcessingResult;

/// Keeps the lifetime totals and writes them to "stats.json" after every change. A file that cannot
/// be read counts as no file, a file that cannot be written is left to the next change; neither is
/// reported. The file is that of the process that wrote last, and whole. Main thread only.
class StatsStore : public QObject {
    Q_OBJECT
    Q_PROPERTY(vellumine::LifetimeStats stats READ stats WRITE setStats NOTIFY statsChanged)

public:
    using Clock = std::function<QDateTime()>;

    /// Makes the folder if it is missing, and reads the totals in it.
    explicit StatsStore(const QString& folder, Clock clock = QDateTime::currentDateTimeUtc,
        QObject* parent = nullptr);

    [[nodiscard]] const LifetimeStats& stats() const { return m_stats; }
    /// Announced, not saved.
    void setStats(const LifetimeStats& stats);

    /// Adds the outcome of one file, and saves. A total that does not fit 64 bits is a fatal error.
    void record(const ProcessingResult& result);

    /// Starts again from nothing, and saves.
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void statsAboutToChange();
    void statsChanged();

private:
    void add(qint64 LifetimeStats::*counter, qint64 amount);
    template <typename Value> void set(Value LifetimeStats::*field, const Value& value);
    void save() const;

    QString m_filePath;
    Clock m_clock;
    LifetimeStats m_stats;
};

} // namespace vellumine
