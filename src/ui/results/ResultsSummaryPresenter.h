#pragma once

#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace vellumine {

struct ProcessingResult;

/// The line above the results: how many files came out, and what became of their sizes.
class ResultsSummaryPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the list of results")
    Q_PROPERTY(QString filesText READ filesText NOTIFY changed)
    Q_PROPERTY(QString totalTitle READ totalTitle NOTIFY changed)
    Q_PROPERTY(QString totalText READ totalText NOTIFY changed)
    Q_PROPERTY(QString reductionText READ reductionText NOTIFY changed)

public:
    using QObject::QObject;

    /// Counts one more outcome. A sum of sizes, and a difference of sums, that does not fit 64 bits
    /// is a fatal error.
    void add(const ProcessingResult& result);

    /// Results that are a success.
    [[nodiscard]] qint64 successfulCount() const { return m_successfulCount; }
    /// Sizes of those.
    [[nodiscard]] qint64 totalOriginalBytes() const { return m_totalOriginalBytes; }
    [[nodiscard]] qint64 totalOutputBytes() const { return m_totalOutputBytes; }

    /// Successes out of all, "9/10".
    [[nodiscard]] QString filesText() const;
    /// "Total Saved", or "Total Larger" when the outputs together are larger.
    [[nodiscard]] QString totalTitle() const;
    [[nodiscard]] QString totalText() const;
    /// "25.0%", with a "+" in front when the outputs together are larger; "0%" without originals.
    [[nodiscard]] QString reductionText() const;

    /// All of it in one sentence, for a screen reader.
    [[nodiscard]] QString spokenText() const;

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] bool hasGrown() const { return m_totalOutputBytes > m_totalOriginalBytes; }
    /// The magnitude of what became of the sizes, whichever way they went.
    [[nodiscard]] qint64 totalChange() const;

    qint64 m_count = 0;
    qint64 m_successfulCount = 0;
    qint64 m_totalOriginalBytes = 0;
    qint64 m_totalOutputBytes = 0;
};

} // namespace vellumine
