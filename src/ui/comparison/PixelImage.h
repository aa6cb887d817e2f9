#pragma once

#include <QImage>
#include <QQuickItem>
#include <qqmlregistration.h>

namespace vellumine {

/// Pictures as QML hands them from a presenter to an item.
struct PictureValue {
    Q_GADGET
    QML_FOREIGN(QImage)
    QML_VALUE_TYPE(picture)
};

/// A picture stretched over the item without smoothing, so that single pixels stay sharp.
class PixelImage : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)

public:
    explicit PixelImage(QQuickItem* parent = nullptr);

    [[nodiscard]] const QImage& image() const { return m_image; }
    void setImage(const QImage& image);

Q_SIGNALS:
    void imageChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    QImage m_image;
    bool m_isTextureStale = true;
};

} // namespace vellumine
