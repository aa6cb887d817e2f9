#include "ui/comparison/PixelImage.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>

#include <memory>

namespace vellumine {

PixelImage::PixelImage(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void PixelImage::setImage(const QImage& image)
{
    m_image = image;
    m_isTextureStale = true;
    update();
    Q_EMIT imageChanged();
}

QSGNode* PixelImage::updatePaintNode(QSGNode* node, UpdatePaintNodeData* /*data*/)
{
    // of the same kind as was returned the time before
    std::unique_ptr<QSGImageNode> picture(static_cast<QSGImageNode*>(node)); // NOLINT: see above
    if (m_image.isNull() || width() <= 0 || height() <= 0) {
        m_isTextureStale = true;
        return nullptr;
    }
    if (!picture) {
        picture.reset(window()->createImageNode());
        picture->setOwnsTexture(true);
        picture->setFiltering(QSGTexture::Nearest);
        m_isTextureStale = true;
    }
    if (m_isTextureStale) {
        picture->setTexture(window()->createTextureFromImage(m_image));
        m_isTextureStale = false;
    }
    picture->setRect(boundingRect());
    return picture.release();
}

} // namespace vellumine
