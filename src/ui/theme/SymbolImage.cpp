#include "ui/theme/SymbolImage.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vellumine {
namespace {

QString symbolPath(const QString& name)
{
    return QStringLiteral(":/qt-project.org/imports/Vellumine/symbols/%1.svg").arg(name);
}

/// What becomes of the layers that a drawing calls secondary.
enum class Layers : std::uint8_t { even, hierarchical };

/// The drawings have one stroke. As with letters, few pixels ask for a bolder one, many for a
/// finer.
double strokeWidth(int pixels)
{
    constexpr double bold = 2.1;
    constexpr double fine = 1.6;
    return bold + (fine - bold) * (std::clamp(pixels, 12, 32) - 12) / 20.0;
}

QByteArray drawingOf(const QString& name, int pixels, Layers layers)
{
    QFile file(symbolPath(name));
    if (name.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArray drawing = file.readAll();
    drawing.replace(
        "stroke-width=\"1.75\"", "stroke-width=\"" + QByteArray::number(strokeWidth(pixels)) + '"');
    if (layers == Layers::hierarchical) {
        drawing.replace("class=\"secondary\"", "opacity=\"0.5\"");
    }
    return drawing;
}

QImage draw(const QString& name, const QColor& color, int pixels, Layers layers)
{
    QSvgRenderer drawing;
    if (pixels <= 0 || !drawing.load(drawingOf(name, pixels, layers))) {
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

/// The same few symbols stand in every row of a list: each is drawn once.
QPixmap drawOnce(const QString& name, const QColor& color, int pixels, Layers layers)
{
    const QString key = QStringLiteral("symbol/%1/%2/%3/%4")
                            .arg(name, color.name(QColor::HexArgb))
                            .arg(pixels)
                            .arg(static_cast<int>(layers));
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = QPixmap::fromImage(draw(name, color, pixels, layers));
        if (!pixmap.isNull()) {
            QPixmapCache::insert(key, pixmap);
        }
    }
    return pixmap;
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
    return draw(name, color, pixels, Layers::even);
}

void SymbolImage::paint(QPainter* painter)
{
    // the device's pixels, so that nothing is scaled on its way to the screen
    const qreal scale = painter->deviceTransform().m11();
    const qreal side = std::min(width(), height());
    const QPixmap symbol = drawOnce(m_name, m_color, static_cast<int>(std::lround(side * scale)),
        m_size >= hierarchicalSize ? Layers::hierarchical : Layers::even);
    if (!symbol.isNull()) {
        painter->drawPixmap(
            QRectF((width() - side) / 2, (height() - side) / 2, side, side), symbol, symbol.rect());
    }
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
