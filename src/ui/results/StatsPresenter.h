#pragma once

#include "stats/StatsStore.h"

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace vellumine {

/// A title and what stands below it.
struct LifetimeMetric {
    Q_GADGET
    QML_VALUE_TYPE(lifetimeMetric)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString value MEMBER value)

public:
    QString title;
    QString value;

    friend bool operator==(const LifetimeMetric&, const LifetimeMetric&) = default;
};

/// The lifetime totals as texts, and their reset.
class StatsPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made beside the statistics store")
    Q_PROPERTY(QString filesText READ filesText NOTIFY changed)
    Q_PROPERTY(QString netSavedText READ netSavedText NOTIFY changed)
    Q_PROPERTY(QString bestText READ bestText NOTIFY changed)
    Q_PROPERTY(QList<vellumine::LifetimeMetric> metrics READ metrics NOTIFY changed)
    Q_PROPERTY(bool canReset READ canReset NOTIFY changed)

public:
    /// The store must outlive the presenter.
    explicit StatsPresenter(StatsStore& store, QObject* parent = nullptr);

    [[nodiscard]] QString filesText() const;
    [[nodiscard]] QString netSavedText() const;
    /// Empty while no file was ever saved a byte of.
    [[nodiscard]] QString bestText() const;
    /// The six totals of the grid, row by row.
    [[nodiscard]] QList<LifetimeMetric> metrics() const;

    /// Whether any file was ever processed.
    [[nodiscard]] bool canReset() const;
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void changed();

private:
    StatsStore& m_store;
};

} // namespace vellumine
