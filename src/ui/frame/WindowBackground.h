#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <qqmlregistration.h>

namespace vellumine {

/// A rounded panel filled with a gradient from its top leading corner to its bottom trailing one.
class WindowBackground : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor startColor MEMBER m_startColor NOTIFY changed)
    Q_PROPERTY(QColor endColor MEMBER m_endColor NOTIFY changed)
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY changed)
    /// The leading side is the right one.
    Q_PROPERTY(bool mirrored MEMBER m_mirrored NOTIFY changed)

public:
    explicit WindowBackground(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    QColor m_startColor;
    QColor m_endColor;
    qreal m_radius = 0;
    bool m_mirrored = false;
};

} // namespace vellumine
