#include "ui/theme/SymbolImage.h"

#include "support/QtPrinters.h"

#include <QColor>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <string>

namespace vellumine {
namespace {

QString sourceFolder()
{
    return QStringLiteral(VELLUMINE_SOURCE_FOLDER);
}

QString contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QStringList drawings()
{
    QStringList names;
    const QStringList files
        = QDir(sourceFolder() + QStringLiteral("/resources/symbols")).entryList(QDir::Files);
    for (const QString& file : files) {
        names.append(file.chopped(4));
    }
    return names;
}

/// What views and presenters say, that reads like the name of a symbol: words joined by dots, or
/// whatever is given to a property that names one.
QSet<QString> namesUsed()
{
    static const QRegularExpression dotted(
        QStringLiteral("\"([a-z]+[a-z0-9]*(?:\\.[a-z0-9]+)+)\""));
    static const QRegularExpression assigned(
        QStringLiteral("\\b(?:symbol|systemName|name):[^\\n]*"));
    static const QRegularExpression quoted(QStringLiteral("\"([a-z][a-z0-9.]*)\""));
    QSet<QString> names;
    QDirIterator files(sourceFolder() + QStringLiteral("/src/ui"),
        { QStringLiteral("*.qml"), QStringLiteral("*.cpp") }, QDir::Files,
        QDirIterator::Subdirectories);
    const auto take = [&names](const QRegularExpression& pattern, const QString& text) {
        auto matches = pattern.globalMatch(text);
        while (matches.hasNext()) {
            names.insert(matches.next().captured(1));
        }
    };
    while (files.hasNext()) {
        const QString text = contentOf(files.next());
        take(dotted, text);
        auto lines = assigned.globalMatch(text);
        while (lines.hasNext()) {
            take(quoted, lines.next().captured());
        }
    }
    return names;
}

TEST(Symbols, everyNameInUseHasADrawing)
{
    const QSet<QString> used = namesUsed();
    EXPECT_TRUE(used.contains(QStringLiteral("checkmark.circle.fill")));
    EXPECT_TRUE(used.contains(QStringLiteral("magnifyingglass")));
    const QStringList drawn = drawings();
    for (const QString& name : used) {
        EXPECT_TRUE(drawn.contains(name)) << name.toStdString();
    }
}

TEST(Symbols, allAreDrawnOnOneGridWithOneStroke)
{
    for (const QString& name : drawings()) {
        const QString drawing
            = contentOf(sourceFolder() + QStringLiteral("/resources/symbols/%1.svg").arg(name));
        EXPECT_TRUE(drawing.contains(QStringLiteral("viewBox=\"0 0 24 24\"")))
            << name.toStdString();
        EXPECT_TRUE(
            drawing.contains(QStringLiteral("stroke-width=\"1.75\" stroke-linecap=\"round\" "
                                            "stroke-linejoin=\"round\"")))
            << name.toStdString();
    }
}

TEST(Symbols, allShowAtEverySizeInTheirColourAndInsideTheirEdges)
{
    const QColor colour(200, 100, 50);
    for (const QString& name : drawings()) {
        for (const int pixels : { 10, 16, 24, 44, 88 }) {
            SCOPED_TRACE(name.toStdString() + " at " + std::to_string(pixels));
            const QImage image = SymbolImage::render(name, colour, pixels);
            ASSERT_EQ(image.width(), pixels);
            int opaque = 0;
            for (int y = 0; y < pixels; ++y) {
                for (int x = 0; x < pixels; ++x) {
                    const QColor pixel = image.pixelColor(x, y);
                    if (pixel.alpha() > 200) {
                        ++opaque;
                        EXPECT_NEAR(pixel.red(), colour.red(), 2);
                        EXPECT_NEAR(pixel.blue(), colour.blue(), 2);
                    }
                }
            }
            if (pixels >= 24) {
                EXPECT_GT(opaque, pixels / 3); // a short line at least
                for (const auto& corner :
                    { image.pixelColor(0, 0), image.pixelColor(pixels - 1, pixels - 1) }) {
                    EXPECT_EQ(corner.alpha(), 0);
                }
            }
        }
    }
}

TEST(Symbols, anUnknownNameIsEmpty)
{
    EXPECT_TRUE(SymbolImage::render(QStringLiteral("no.such.symbol"), Qt::red, 16).isNull());
    EXPECT_TRUE(SymbolImage::render(QString(), Qt::red, 16).isNull());
    EXPECT_TRUE(SymbolImage::render(QStringLiteral("../symbols/plus"), Qt::red, 0).isNull());
}

TEST(ApplicationIcon, existsInEverySize)
{
    const QString folder = sourceFolder() + QStringLiteral("/resources/icons/hicolor/");
    for (const int size : { 16, 32, 48, 128, 256, 512 }) {
        const QImage icon(
            folder + QStringLiteral("%1x%1/apps/com.kestrova.Vellumine.png").arg(size));
        EXPECT_TRUE(icon.size() == QSize(size, size));
        EXPECT_GT(icon.pixelColor(size / 2, size / 2).alpha(), 250);
    }
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("scalable/apps/com.kestrova.Vellumine.svg")));
}

} // namespace
} // namespace vellumine
