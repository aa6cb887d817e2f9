#include "ui/translation/Translations.h"

#include "platform/ByteCount.h"
#include "support/QtPrinters.h"
#include "ui/settings/SettingsText.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

namespace vellumine {
namespace {

TEST(TranslationsTest, speakTheLanguageOfTheLocaleWhileTheyLive)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    {
        const Translations translations(german);
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
    const Translations translations(icelandic);
    EXPECT_FALSE(translations.areLoaded());
    EXPECT_EQ(settings_text::title(ResizeMode::longestEdge), QStringLiteral("Longest Edge"));
}

TEST(TranslationsTest, areLeftOutWhereEnglishIsPreferred)
{
    const QByteArray before = qgetenv("LANGUAGE");
    const auto restore = qScopeGuard([&] { qputenv("LANGUAGE", before); });
    for (const char* languages : { "en_US:de", "en:de", "is:en:de" }) {
        qputenv("LANGUAGE", languages);
        const Translations translations(QLocale::system());
        EXPECT_FALSE(translations.areLoaded()) << languages;
    }
    qputenv("LANGUAGE", "is:de:en");
    const Translations translations(QLocale::system());
    EXPECT_EQ(settings_text::title(ResizeMode::longestEdge), QStringLiteral("Längste Seite"));
}

} // namespace
} // namespace vellumine
