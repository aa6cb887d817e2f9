#include "ui/theme/SymbolImage.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace vellumine {
namespace {

QString symbolPath(const QString& name)
{
    return QStringLiteral(":/qt-project.org/imports/Vellumine/symbols/%1.svg").arg(name);
}

} // namespace

SymbolImage::SymbolImage(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    setImplicitSize(m_size, m_size);
}

QImage SymbolImage::render(const QString& name, const QColor& color, int pixels)
{
    QSvgRenderer drawing;
    if (pixels <= 0 || name.isEmpty() || !QFile::exists(symbolPath(name))
        || !drawing.load(symbolPath(name))) {
        return {};
    }
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter, QRectF(0, 0, pixels, pixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

void SymbolImage::paint(QPainter* painter)
{
    // the device's pixels, so that nothing is scaled on its way to the screen
    const qreal scale = painter->deviceTransform().m11();
    const qreal side = std::min(width(), height());
    QImage image = render(m_name, m_color, static_cast<int>(std::lround(side * scale)));
    if (image.isNull()) {
        return;
    }
    painter->drawImage(
        QRectF((width() - side) / 2, (height() - side) / 2, side, side), image, image.rect());
}

void SymbolImage::setName(const QString& name)
{
    if (name != m_name) {
        m_name = name;
        update();
        Q_EMIT nameChanged();
    }
}

void SymbolImage::setColor(const QColor& color)
{
    if (color != m_color) {
        m_color = color;
        update();
        Q_EMIT colorChanged();
    }
}

void SymbolImage::setSize(qreal size)
{
    if (size != m_size) {
        m_size = size;
        setImplicitSize(size, size);
        update();
        Q_EMIT sizeChanged();
    }
}

bool SymbolImage::isAvailable() const
{
    return !m_name.isEmpty() && QFile::exists(symbolPath(m_name));
}

} // namespace vellumine
