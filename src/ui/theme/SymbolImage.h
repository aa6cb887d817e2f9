#pragma once

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QString>
#include <qqmlregistration.h>

namespace vellumine {

/// One of our symbols, drawn in one colour and sharp at every scale factor. Layers that the drawing
/// makes translucent stay so; from `hierarchicalSize` on, those that it calls secondary step back.
/// It fills the largest square in its middle; its implicit size is `size` by `size`. A name that
/// there is no drawing of shows nothing.
class SymbolImage : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(bool available READ isAvailable NOTIFY nameChanged)

public:
    static constexpr qreal hierarchicalSize = 32;

    explicit SymbolImage(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

    [[nodiscard]] const QString& name() const { return m_name; }
    void setName(const QString& name);
    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor& color);
    [[nodiscard]] qreal size() const { return m_size; }
    void setSize(qreal size);
    /// Whether there is a drawing of that name.
    [[nodiscard]] bool isAvailable() const;

    /// The symbol in a colour, `pixels` wide and high; a null image where there is none.
    [[nodiscard]] static QImage render(const QString& name, const QColor& color, int pixels);

Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

private:
    QString m_name;
    QColor m_color = Qt::black;
    qreal m_size = 16;
};

} // namespace vellumine
