#pragma once

#include "ui/results/ResultsListModel.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <qqmlregistration.h>

namespace vellumine {

/// A list of results that a test fills, and what its rows' buttons did.
class ResultsFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::ResultsListModel* model READ model CONSTANT)
    Q_PROPERTY(QStringList revealed MEMBER m_revealed NOTIFY acted)
    Q_PROPERTY(QStringList compared MEMBER m_compared NOTIFY acted)

public:
    explicit ResultsFixture(QObject* parent = nullptr);

    [[nodiscard]] ResultsListModel* model() { return &m_model; }

    /// A written file. `details`: "alpha" and "alphaKept", "metadataKept", "colour" ("sRGB",
    /// "removed" or "kept"), "formats" (two names) and "sizes" (four numbers).
    Q_INVOKABLE void addSuccess(const QString& name, double originalBytes, double outputBytes,
        const QVariantMap& details = {});
    Q_INVOKABLE void addFailure(const QString& name, const QString& message);
    /// A file that was written, and that something is wrong with all the same.
    Q_INVOKABLE void addFailureWithOutput(const QString& name, const QString& message);
    /// A file that is no picture.
    Q_INVOKABLE void addUnreadable(const QString& name);
    /// So many files, all different.
    Q_INVOKABLE void addMany(int count);

Q_SIGNALS:
    void acted();

private:
    ResultsListModel m_model;
    QStringList m_revealed;
    QStringList m_compared;
};

} // namespace vellumine
