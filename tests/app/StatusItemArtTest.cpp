#include "app/tray/StatusItemArt.h"
#include "app/tray/StatusMenu.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vellumine {
namespace {

QImage painted(const StatusItemArt& art, QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    art.paint(painter, QRectF(image.rect()));
    return image;
}

TEST(StatusItemArt, centresTheImage)
{
    EXPECT_EQ(StatusItemArt::imageRect(QRectF(0, 0, 30, 24)), QRectF(6, 3, 18, 18));
    EXPECT_EQ(StatusItemArt::imageRect(QRectF(0, 0, 16, 22)), QRectF(0, 3, 16, 16));
}

TEST(StatusItemArt, lightsUpTwoPointsInsideItsBounds)
{
    const QColor colour = StatusItemArt::highlightColor();
    EXPECT_NEAR(colour.redF(), 0.788, 0.001);
    EXPECT_NEAR(colour.greenF(), 0.576, 0.001);
    EXPECT_NEAR(colour.blueF(), 0.451, 0.001);
    EXPECT_NEAR(colour.alphaF(), 0.32, 0.001);

    const QImage image
        = painted({ .tint = Qt::white, .background = {}, .isHighlighted = true }, { 30, 24 });
    EXPECT_EQ(image.pixelColor(1, 12).alpha(), 0);
    EXPECT_EQ(image.pixelColor(12, 1).alpha(), 0);
    EXPECT_NEAR(image.pixelColor(2, 2).alphaF(), 0.32, 0.01);
    EXPECT_NEAR(image.pixelColor(27, 21).alphaF(), 0.32, 0.01);
}

TEST(StatusItemArt, isTransparentOrThePanelsColourAround)
{
    EXPECT_EQ(
        painted({ .tint = Qt::white, .background = {} }, { 30, 24 }).pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(painted({ .tint = Qt::white, .background = QColor(10, 20, 30) }, { 30, 24 })
                  .pixelColor(0, 0),
        QColor(10, 20, 30));
}

TEST(StatusItemArt, drawsTheSymbolInItsTint)
{
    const QImage image = painted({ .tint = QColor(200, 100, 50), .background = {} }, { 30, 24 });
    int solid = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == QColor(200, 100, 50)) {
                EXPECT_TRUE(QRect(6, 3, 18, 18).contains(x, y));
                ++solid;
            }
        }
    }
    EXPECT_GT(solid, 10);
}

TEST(StatusItemArt, tintStandsOutFromThePanel)
{
    EXPECT_GT(qGray(StatusItemArt::tintOn(QColor(32, 32, 32)).rgb()), 200);
    EXPECT_LT(qGray(StatusItemArt::tintOn(QColor(230, 230, 230)).rgb()), 60);
}

/// The contrast of two colours as the guidelines for accessible contents reckon it, from 1 to 21.
double contrast(const QColor& one, const QColor& other)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&linear](const QColor& color) {
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
            + 0.0722 * linear(color.blueF()) + 0.05;
    };
    const auto [darker, lighter] = std::minmax({ luminance(one), luminance(other) });
    return lighter / darker;
}

TEST(StatusItemArt, tintForAnyPanelIsSeenOnLightAndDarkOnes)
{
    for (const QColor& panel : { QColor(Qt::white), QColor(0xf6, 0xf5, 0xf4),
             QColor(0x24, 0x24, 0x24), QColor(Qt::black) }) {
        EXPECT_GT(contrast(StatusItemArt::tintOnAnyPanel(), panel), 3.0)
            << panel.name().toStdString();
    }
}

TEST(StatusMenu, listsItsItemsInOrder)
{
    QStringList chosen;
    const auto menu = makeStatusMenu({
        .openWindow = [&chosen] { chosen.append(QStringLiteral("window")); },
        .openPreferences = [&chosen] { chosen.append(QStringLiteral("preferences")); },
        .openWebsite = [&chosen] { chosen.append(QStringLiteral("website")); },
        .quit = [&chosen] { chosen.append(QStringLiteral("quit")); },
    });
    QStringList titles;
    for (QAction* action : menu->actions()) {
        titles.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        action->trigger();
    }
    EXPECT_EQ(titles,
        QStringList({ QStringLiteral("Open Drop Window"), QStringLiteral("Preferences..."),
            QStringLiteral("Kestrova Website"), QStringLiteral("-"),
            QStringLiteral("Quit Vellumine") }));
    EXPECT_EQ(chosen,
        QStringList({ QStringLiteral("window"), QStringLiteral("preferences"),
            QStringLiteral("website"), QStringLiteral("quit") }));
    EXPECT_EQ(menu->actions().constLast()->shortcut(), QKeySequence(QStringLiteral("Ctrl+Q")));
}

} // namespace
} // namespace vellumine
