#pragma once

#include "ui/comparison/ComparisonSample.h"

#include <QObject>
#include <QSize>
#include <QString>
#include <qqmlregistration.h>

namespace vellumine {

/// One comparison as its window shows it: the two pictures, their names and sizes, and the split
/// between them.
class ComparisonPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made from a comparison sample")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QImage sourceImage READ sourceImage CONSTANT)
    Q_PROPERTY(QImage outputImage READ outputImage CONSTANT)
    Q_PROPERTY(QString sourceText READ sourceText CONSTANT)
    Q_PROPERTY(QString outputText READ outputText CONSTANT)
    Q_PROPERTY(QString sourceSizeText READ sourceSizeText CONSTANT)
    Q_PROPERTY(QString outputSizeText READ outputSizeText CONSTANT)
    Q_PROPERTY(QSizeF displaySize READ displaySize CONSTANT)
    Q_PROPERTY(QSize contentSize READ contentSize CONSTANT)
    Q_PROPERTY(QSize minimumSize READ minimumSize CONSTANT)
    Q_PROPERTY(double split READ split NOTIFY splitChanged)
    Q_PROPERTY(QString splitText READ splitText NOTIFY splitChanged)

public:
    ComparisonPresenter(ComparisonSample sample, QString title, QObject* parent = nullptr);

    [[nodiscard]] const QString& title() const { return m_title; }
    [[nodiscard]] const QImage& sourceImage() const { return m_sample.sourceImage; }
    [[nodiscard]] const QImage& outputImage() const { return m_sample.outputImage; }
    /// "Before: " or "After: " and the file's name.
    [[nodiscard]] QString sourceText() const;
    [[nodiscard]] QString outputText() const;
    /// The whole pictures' sizes, "4032x3024".
    [[nodiscard]] QString sourceSizeText() const;
    [[nodiscard]] QString outputSizeText() const;
    [[nodiscard]] QSizeF displaySize() const { return m_sample.displaySize; }
    /// Of a window that shows the sample whole: 760 points wide at least.
    [[nodiscard]] QSize contentSize() const;
    /// The smallest content that a window may have.
    [[nodiscard]] static QSize minimumSize() { return { 560, 420 }; }

    /// Where the split is, from 0 (all after) to 1 (all before).
    [[nodiscard]] double split() const { return m_split; }
    /// The same in words, for a screen reader.
    [[nodiscard]] QString splitText() const;

    /// The pointer is at `x` of a canvas of that width.
    Q_INVOKABLE void pointAt(double x, double canvasWidth);
    /// Moves the split by so many steps of a hundredth.
    Q_INVOKABLE void moveSplit(int steps);
    Q_INVOKABLE void setSplit(double split);

Q_SIGNALS:
    void splitChanged();

private:
    ComparisonSample m_sample;
    QString m_title;
    double m_split = 0.5;
};

} // namespace vellumine
