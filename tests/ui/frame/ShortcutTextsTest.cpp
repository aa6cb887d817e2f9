#include "ui/frame/ShortcutTexts.h"

#include "support/QtPrinters.h"
#include "ui/translation/Translations.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

TEST(ShortcutTextsTest, areTheUsersToReadAndTheSameForPrograms)
{
    EXPECT_EQ(ShortcutTexts::quit(), QStringLiteral("Ctrl+Q"));
    const Translations german({ QStringLiteral("de-DE") });
    EXPECT_EQ(ShortcutTexts::quit(), QStringLiteral("Strg+Q"));
    EXPECT_EQ(ShortcutTexts::quitKeys(), QStringLiteral("Ctrl+Q"));
    EXPECT_EQ(ShortcutTexts::portable(ShortcutTexts::quit()), QStringLiteral("Ctrl+Q"));
    EXPECT_EQ(ShortcutTexts::portable(ShortcutTexts::preferences()), QStringLiteral("Ctrl+,"));
    EXPECT_EQ(ShortcutTexts::portable(QString()), QString());
}

} // namespace
} // namespace vellumine
