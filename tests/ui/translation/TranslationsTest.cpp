#include "ui/translation/Translations.h"

#include "platform/ByteCount.h"
#include "support/QtPrinters.h"
#include "ui/settings/SettingsText.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

TEST(TranslationsTest, speakTheLanguageOfTheLocaleWhileTheyLive)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    {
        const Translations translations(german.uiLanguages());
        EXPECT_TRUE(translations.areLoaded());
        EXPECT_EQ(settings_text::title(ResizeMode::longestEdge), QStringLiteral("Längste Seite"));
        EXPECT_EQ(platform::byteCountText(0, german), QStringLiteral("Null KB"));
        EXPECT_EQ(platform::byteCountText(2, german), QStringLiteral("2 Byte"));
    }
    EXPECT_EQ(settings_text::title(ResizeMode::longestEdge), QStringLiteral("Longest Edge"));
}

TEST(TranslationsTest, areEnglishWhereThereAreNone)
{
    const QLocale icelandic(QLocale::Icelandic);
    const Translations translations(icelandic.uiLanguages());
    EXPECT_FALSE(translations.areLoaded());
    EXPECT_EQ(settings_text::title(ResizeMode::longestEdge), QStringLiteral("Longest Edge"));
}

TEST(TranslationsTest, areLeftOutWhereEnglishIsPreferred)
{
    const QString german = QStringLiteral("de-AT");
    const QString icelandic = QStringLiteral("is");
    for (const QString& english :
        { QStringLiteral("en-US"), QStringLiteral("en"), QStringLiteral("C") }) {
        EXPECT_FALSE(Translations({ english, german }).areLoaded()) << english.toStdString();
        EXPECT_FALSE(Translations({ icelandic, english, german }).areLoaded());
        EXPECT_TRUE(Translations({ icelandic, german, english }).areLoaded());
    }
}

} // namespace
} // namespace vellumine
