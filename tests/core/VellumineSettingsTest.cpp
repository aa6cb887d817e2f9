#include "core/VellumineSettings.h"
#include "core/OptimizerSettings.h"
#include "core/PreferencesFile.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace vellumine {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

QByteArray allBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.append(static_cast<char>(i));
    }
    return bytes;
}

/// One row of the table of preferences: the default, and another value with its stored form.
struct Preference {
    const char* name;
    QVariant initial;
    QVariant other;
    QVariant stored;
};

template <typename Choice> Preference choice(const char* name, Choice initial, Choice other)
{
    return { name, QVariant::fromValue(initial), QVariant::fromValue(other), rawValue(other) };
}

Preference plain(const char* name, const QVariant& initial, const QVariant& other)
{
    return { name, initial, other, other };
}

const QList<Preference>& preferences()
{
    static const QList<Preference> table {
        choice("resizeMode", ResizeMode::maxWidth, ResizeMode::longestEdge),
        plain("maximumPixels", qint64 { 2560 }, std::numeric_limits<qint64>::max()),
        choice("outputFormat", OutputFormat::webp, OutputFormat::heic),
        plain("quality", 82.0, 0.1 + 0.2),
        plain("optimizeColorForSharing", true, false),
        plain("removeColorManagement", true, false),
        plain("removeMetadata", true, false),
        choice(
            "destinationMode", DestinationMode::originalLocation, DestinationMode::selectedFolder),
        plain("destinationFolderBookmark", QByteArray(), allBytes()),
        plain("originalLocationFolderBookmarks", QByteArray(), allBytes()),
        plain("filenamePrefix", QString(), QStringLiteral(" \"a,b\";=\\ %\n@[c] été \U0001F600 ")),
        plain("filenameSuffix", QString(), QStringLiteral("@ByteArray(x)")),
        plain("moveOriginalToTrash", false, true),
        plain("preserveModificationTime", true, false),
        plain("warnBeforeOverwrite", false, true),
        plain("exitWhenComplete", false, true),
    };
    return table;
}

TEST(VellumineSettings, hasTheSixteenPreferencesInOrder)
{
    const QMetaObject& meta = VellumineSettings::staticMetaObject;
    ASSERT_EQ(meta.propertyCount() - meta.propertyOffset(), 16);
    ASSERT_THAT(preferences(), SizeIs(16));
    for (int i = 0; i < 16; ++i) {
        EXPECT_STREQ(meta.property(meta.propertyOffset() + i).name(), preferences().at(i).name);
    }
}

class EachPreference : public testing::TestWithParam<Preference> {
protected:
    [[nodiscard]] static QString key() { return QString::fromLatin1(GetParam().name); }
    [[nodiscard]] static QVariant value(const VellumineSettings& settings)
    {
        return settings.property(GetParam().name);
    }

    test::PreferencesFile m_file;
    VellumineSettings m_settings { m_file.open() };
};

TEST_P(EachPreference, startsWithItsDefaultAndStoresNothing)
{
    EXPECT_EQ(value(m_settings), GetParam().initial);
    EXPECT_FALSE(m_file.open()->contains(key()));
}

TEST_P(EachPreference, isStoredUnderItsName)
{
    ASSERT_TRUE(m_settings.setProperty(GetParam().name, GetParam().other));
    EXPECT_EQ(value(m_settings), GetParam().other);
    EXPECT_EQ(m_file.open()->value(key()), GetParam().stored);
    EXPECT_THAT(m_file.open()->allKeys(), ElementsAre(key()));
}

TEST_P(EachPreference, survivesTheProgramsEnd)
{
    ASSERT_TRUE(m_settings.setProperty(GetParam().name, GetParam().other));
    EXPECT_EQ(value(VellumineSettings(m_file.reopen())), GetParam().other);
    ASSERT_TRUE(m_settings.setProperty(GetParam().name, GetParam().initial));
    EXPECT_EQ(value(VellumineSettings(m_file.reopen())), GetParam().initial);
}

TEST_P(EachPreference, isNotCached)
{
    const VellumineSettings second(m_file.open());
    ASSERT_EQ(value(second), GetParam().initial);
    ASSERT_TRUE(m_settings.setProperty(GetParam().name, GetParam().other));
    EXPECT_EQ(value(second), GetParam().other);
    m_file.open()->remove(key());
    EXPECT_EQ(value(m_settings), GetParam().initial);
}

TEST_P(EachPreference, announcesEveryWrite)
{
    const QMetaObject& meta = VellumineSettings::staticMetaObject;
    const QMetaMethod notification
        = meta.property(meta.indexOfProperty(GetParam().name)).notifySignal();
    QSignalSpy own(&m_settings, notification);
    QSignalSpy common(&m_settings, &VellumineSettings::changed);
    QVariant whenAnnounced;
    QObject::connect(&m_settings, &VellumineSettings::changed, &m_settings,
        [&] { whenAnnounced = value(m_settings); });
    m_settings.setProperty(GetParam().name, GetParam().other);
    EXPECT_THAT(own, SizeIs(1));
    EXPECT_THAT(common, SizeIs(1));
    EXPECT_EQ(whenAnnounced, GetParam().other);
    m_settings.setProperty(GetParam().name, GetParam().other);
    EXPECT_THAT(own, SizeIs(2));
    EXPECT_THAT(common, SizeIs(2));
}

TEST_P(EachPreference, leavesTheOthersAlone)
{
    m_settings.setProperty(GetParam().name, GetParam().other);
    for (const Preference& preference : preferences()) {
        if (QByteArrayView(preference.name) != GetParam().name) {
            EXPECT_EQ(m_settings.property(preference.name), preference.initial) << preference.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Preferences, EachPreference, testing::ValuesIn(preferences()), test::RowName());

struct StoredLine {
    const char* name;
    const char* property;
    const char* text; ///< what stands behind "property="
    QVariant value;
};

class StoredByHand : public testing::TestWithParam<StoredLine> { };

TEST_P(StoredByHand, isReadAs)
{
    test::PreferencesFile file;
    file.write("[General]\n" + QByteArray(GetParam().property) + "=" + GetParam().text + "\n");
    EXPECT_EQ(VellumineSettings(file.open()).property(GetParam().property), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Choices, StoredByHand,
    testing::Values(
        StoredLine { "known", "outputFormat", "heic", QVariant::fromValue(OutputFormat::heic) },
        StoredLine { "unknown", "outputFormat", "gif", QVariant::fromValue(OutputFormat::webp) },
        StoredLine { "upperCase", "outputFormat", "HEIC", QVariant::fromValue(OutputFormat::webp) },
        StoredLine { "number", "outputFormat", "4", QVariant::fromValue(OutputFormat::webp) },
        StoredLine { "list", "outputFormat", "heic, png", QVariant::fromValue(OutputFormat::webp) },
        StoredLine {
            "bytes", "outputFormat", "@ByteArray(heic)", QVariant::fromValue(OutputFormat::webp) },
        StoredLine {
            "resize", "resizeMode", "smallest", QVariant::fromValue(ResizeMode::maxWidth) },
        StoredLine { "destination", "destinationMode", "",
            QVariant::fromValue(DestinationMode::originalLocation) }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(Integers, StoredByHand,
    testing::Values( //
        StoredLine { "whole", "maximumPixels", "1200", qint64 { 1200 } },
        StoredLine { "negative", "maximumPixels", "-5", qint64 { -5 } },
        StoredLine { "word", "maximumPixels", "abc", qint64 { 2560 } },
        StoredLine { "nothing", "maximumPixels", "", qint64 { 2560 } },
        StoredLine { "fraction", "maximumPixels", "1200.5", qint64 { 2560 } },
        StoredLine { "unit", "maximumPixels", "1200px", qint64 { 2560 } },
        StoredLine { "beyond64Bits", "maximumPixels", "9223372036854775808", qint64 { 2560 } },
        StoredLine { "truth", "maximumPixels", "true", qint64 { 2560 } },
        StoredLine { "list", "maximumPixels", "1200, 3", qint64 { 2560 } },
        StoredLine { "invalid", "maximumPixels", "@Invalid()", qint64 { 2560 } }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(Numbers, StoredByHand,
    testing::Values( //
        StoredLine { "whole", "quality", "75", 75.0 }, //
        StoredLine { "fraction", "quality", "75.25", 75.25 },
        StoredLine { "exponent", "quality", "7.5e1", 75.0 },
        StoredLine { "zero", "quality", "0", 0.0 }, //
        StoredLine { "word", "quality", "abc", 82.0 }, //
        StoredLine { "notANumber", "quality", "nan", 82.0 },
        StoredLine { "infinite", "quality", "inf", 82.0 },
        StoredLine { "minusInfinite", "quality", "-inf", 82.0 },
        StoredLine { "tooLarge", "quality", "1e999", 82.0 },
        StoredLine { "decimalComma", "quality", "75,5", 82.0 },
        StoredLine { "percent", "quality", "75%", 82.0 }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(TruthValues, StoredByHand,
    testing::Values( //
        StoredLine { "isTrue", "moveOriginalToTrash", "true", true },
        StoredLine { "isFalse", "removeMetadata", "false", false },
        StoredLine { "word", "removeMetadata", "abc", true },
        StoredLine { "wordWithoutHarm", "moveOriginalToTrash", "abc", false },
        StoredLine { "nothing", "removeMetadata", "", true },
        StoredLine { "number", "moveOriginalToTrash", "2", false },
        StoredLine { "list", "moveOriginalToTrash", "true, true", false },
        StoredLine { "bytes", "moveOriginalToTrash", "@ByteArray(true)", false }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(TextsAndData, StoredByHand,
    testing::Values( //
        StoredLine { "text", "filenamePrefix", "a", QStringLiteral("a") },
        StoredLine { "digits", "filenamePrefix", "007", QStringLiteral("007") },
        StoredLine { "quoted", "filenamePrefix", R"("a, b")", QStringLiteral("a, b") },
        StoredLine { "list", "filenamePrefix", "a, b", QString() },
        StoredLine { "bytes", "filenameSuffix", "@ByteArray(a)", QString() },
        StoredLine { "data", "destinationFolderBookmark", "@ByteArray(a)", QByteArray("a") },
        StoredLine { "textAsData", "destinationFolderBookmark", "abc", QByteArray() },
        StoredLine { "listAsData", "originalLocationFolderBookmarks", "a, b", QByteArray() }),
    test::RowName());

TEST(VellumineSettings, aValueOfAnotherTypeInMemoryReadsAsTheDefault)
{
    const test::PreferencesFile file;
    const VellumineSettings settings(file.open());
    const auto raw = file.open();
    for (const Preference& preference : preferences()) {
        raw->setValue(QString::fromLatin1(preference.name), QVariantList { 1, 2 });
        EXPECT_EQ(settings.property(preference.name), preference.initial) << preference.name;
    }
    raw->setValue(QStringLiteral("quality"), std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(settings.quality(), 82.0);
    raw->setValue(QStringLiteral("maximumPixels"), 12.5);
    EXPECT_EQ(settings.maximumPixels(), 2560);
    raw->setValue(QStringLiteral("maximumPixels"), 12);
    EXPECT_EQ(settings.maximumPixels(), 12);
    raw->setValue(QStringLiteral("quality"), 12);
    EXPECT_EQ(settings.quality(), 12.0);
}

TEST(UserPreferences, belongToTheProgramAlone)
{
    const auto preferences = userPreferences();
    EXPECT_EQ(preferences->organizationName(), QStringLiteral("Kestrova"));
    EXPECT_EQ(preferences->applicationName(), QStringLiteral("Vellumine"));
    EXPECT_EQ(preferences->scope(), QSettings::UserScope);
    EXPECT_FALSE(preferences->fallbacksEnabled());
}

} // namespace
} // namespace vellumine
