#include "ui/fakes/ComparisonFixture.h"

#include <QBuffer>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace vellumine {
namespace {

QImage flat(int width, int height, QRgb colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

/// What a strong compression leaves of a picture.
QImage compressed(const QImage& image)
{
    QByteArray bytes;
    QBuffer file(&bytes);
    constexpr int lowQuality = 22;
    if (!image.save(&file, "jpeg", lowQuality)) {
        qFatal("Qt cannot write JPEG here");
    }
    return QImage::fromData(bytes, "jpeg");
}

} // namespace

ComparisonFixture::ComparisonFixture(QObject* parent)
    : QObject(parent)
{
    makeLandscape();
}

void ComparisonFixture::make(const QImage& before, const QImage& after)
{
    m_presenters.push_back(std::make_unique<ComparisonPresenter>(
        ComparisonSample {
            .sourceImage = before,
            .outputImage = after,
            .sourceName = QStringLiteral("Dolomites at dawn.jpg"),
            .outputName = QStringLiteral("Dolomites at dawn.webp"),
            .sourcePixelSize = { 4032, 3024 },
            .outputPixelSize = { 2560, 1920 },
            .displaySize = QSizeF(before.size()),
        },
        QStringLiteral("Review Dolomites at dawn.webp")));
    Q_EMIT presenterChanged();
}

void ComparisonFixture::makeFlat(int width, int height)
{
    make(flat(width, height, qRgb(0, 0, 255)), flat(width, height, qRgb(255, 0, 0)));
}

void ComparisonFixture::makeChecked(int width, int height)
{
    QImage image = flat(width, height, qRgb(255, 255, 255));
    for (int y = 0; y < height; ++y) {
        for (int x = y % 2; x < width; x += 2) {
            image.setPixel(x, y, qRgb(0, 0, 0));
        }
    }
    make(image, image);
}

void ComparisonFixture::makeLandscape()
{
    QImage image(720, 460, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 460);
    sky.setStops({ { 0, QColor(52, 74, 118) }, { 0.5, QColor(214, 152, 128) },
        { 0.75, QColor(250, 214, 165) }, { 1, QColor(120, 96, 84) } });
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(255, 244, 214));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPoint(505, 190), 36, 36);
    const auto ridge = [&painter](QColor colour, double height, double phase) {
        QPainterPath path(QPointF(0, 460));
        for (int x = 0; x <= 720; x += 4) {
            path.lineTo(x,
                height + 46 * std::sin(x / 83.0 + phase) + 18 * std::sin(x / 21.0 + 2 * phase)
                    + 5 * std::sin(x / 5.0 + phase));
        }
        path.lineTo(720, 460);
        painter.fillPath(path, colour);
    };
    ridge(QColor(136, 112, 132), 260, 0.4);
    ridge(QColor(92, 78, 92), 320, 2.1);
    ridge(QColor(46, 42, 48), 390, 4.2);
    painter.end();
    make(image, compressed(image));
}

} // namespace vellumine
