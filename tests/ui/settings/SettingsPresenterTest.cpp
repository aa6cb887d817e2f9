#include "ui/settings/SettingsPresenter.h"
#include "core/PreferencesFile.h"
#include "core/VellumineSettings.h"
#include "platform/FilePath.h"
#include "platform/FolderBookmarks.h"
#include "support/QtPrinters.h"
#include "ui/settings/SettingsText.h"

#include <QLocale>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace vellumine {
namespace {

using ::testing::ElementsAre;

/// A bookmark is the folder's path; folders can be gone, or refuse to be remembered.
class FakeBookmarks final : public platform::FolderBookmarks {
public:
    std::optional<QByteArray> create(const QUrl& folder) override
    {
        return canCreate ? std::optional(folder.toLocalFile().toUtf8()) : std::nullopt;
    }

    std::optional<Resolution> resolve(const QByteArray& bookmark) override
    {
        if (gone.contains(bookmark)) {
            return std::nullopt;
        }
        return Resolution { platform::fileUrl(QString::fromUtf8(bookmark)), true };
    }

    QList<QByteArray> gone;
    bool canCreate = true;
};

class Presenter : public testing::Test {
protected:
    Presenter() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    ~Presenter() override { QLocale::setDefault(QLocale::c()); }

    /// What the user does with the next panel.
    void answerWith(std::optional<QUrl> folder)
    {
        m_answer
            = [folder = std::move(folder)](const FolderPanelAnswer& answer) { answer(folder); };
    }

    void storeFolder(const char* path) { m_settings.setDestinationFolderBookmark(path); }

    test::PreferencesFile m_file;
    VellumineSettings m_settings { m_file.open() };
    FakeBookmarks m_bookmarks;
    std::vector<FolderPanel> m_panels;
    std::function<void(const FolderPanelAnswer&)> m_answer
        = [](const FolderPanelAnswer& answer) { answer(std::nullopt); };
    std::unique_ptr<SettingsPresenter> m_presenter = std::make_unique<SettingsPresenter>(
        m_settings, m_bookmarks, [this](const FolderPanel& panel, const FolderPanelAnswer& answer) {
            m_panels.push_back(panel);
            m_answer(answer);
        });
};

QUrl folder(const char* path)
{
    return platform::fileUrl(QString::fromUtf8(path));
}

TEST_F(Presenter, aFreshInstallationShowsTheDefaults)
{
    EXPECT_EQ(m_presenter->formatText(), u"WebP Lossy");
    EXPECT_EQ(m_presenter->resizeText(), u"2560px");
    EXPECT_EQ(m_presenter->resizeSymbol(), u"arrow.left.and.right");
    EXPECT_EQ(m_presenter->qualityText(), u"Quality 82");
    EXPECT_EQ(m_presenter->qualitySymbol(), u"slider.horizontal.3");
    EXPECT_EQ(m_presenter->destinationText(), u"Original location");
    EXPECT_EQ(m_presenter->metadataText(), u"Remove metadata");
    EXPECT_EQ(m_presenter->metadataSymbol(), u"trash");
    EXPECT_EQ(m_presenter->colorText(), u"sRGB");
    EXPECT_EQ(m_presenter->formatSymbol(), u"photo");
    EXPECT_EQ(m_presenter->destinationSymbol(), u"folder");
    EXPECT_EQ(m_presenter->colorSymbol(), u"paintpalette");
    EXPECT_EQ(m_presenter->destinationFolderButtonTitle(), u"Choose Folder...");
    EXPECT_EQ(
        m_presenter->destinationFolderDescription(), u"Used when Destination is Selected Folder");
}

struct Write {
    const char* name;
    const char* property;
    QVariant value;
};

class EachPreference : public Presenter, public testing::WithParamInterface<Write> { };

TEST_P(EachPreference, isWrittenThroughAtOnceAndAnnounced)
{
    const QSignalSpy changes(m_presenter.get(), &SettingsPresenter::changed);
    ASSERT_NE(m_presenter->property(GetParam().property), GetParam().value);
    ASSERT_TRUE(m_presenter->setProperty(GetParam().property, GetParam().value));

    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(m_presenter->property(GetParam().property), GetParam().value);
    VellumineSettings reread(m_file.reopen());
    const SettingsPresenter another(reread, m_bookmarks, [](const auto&, const auto&) {});
    EXPECT_EQ(another.property(GetParam().property), GetParam().value);
}

TEST_P(EachPreference, announcesAWriteOfTheSameValueToo)
{
    const QVariant present = m_presenter->property(GetParam().property);
    const QSignalSpy changes(m_presenter.get(), &SettingsPresenter::changed);
    m_presenter->setProperty(GetParam().property, present);
    EXPECT_EQ(changes.count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Presenter, EachPreference,
    testing::Values(Write { "resizeMode", "resizeMode", 2 },
        Write { "maximumPixels", "maximumPixels", qint64 { 1234 } },
        Write { "outputFormat", "outputFormat", 4 }, Write { "quality", "quality", 41.0 },
        Write { "optimizeColorForSharing", "optimizeColorForSharing", false },
        Write { "removeColorManagement", "removeColorManagement", false },
        Write { "removeMetadata", "removeMetadata", false },
        Write { "destinationMode", "destinationMode", 1 },
        Write { "filenamePrefix", "filenamePrefix", QStringLiteral("small-") },
        Write { "filenameSuffix", "filenameSuffix", QStringLiteral("-web") },
        Write { "moveOriginalToTrash", "moveOriginalToTrash", true },
        Write { "preserveModificationTime", "preserveModificationTime", false },
        Write { "warnBeforeOverwrite", "warnBeforeOverwrite", true },
        Write { "exitWhenComplete", "exitWhenComplete", true }),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Presenter, aWriteElsewhereIsAnnounced)
{
    const QSignalSpy changes(m_presenter.get(), &SettingsPresenter::changed);
    m_settings.setOutputFormat(OutputFormat::heic);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(m_presenter->formatText(), u"HEIC");
}

TEST_F(Presenter, aNumberThatNamesNoCaseChangesNothing)
{
    const QSignalSpy changes(m_presenter.get(), &SettingsPresenter::changed);
    for (const int wrong : { -1, 4, 6, 99 }) {
        m_presenter->setResizeMode(wrong);
        m_presenter->setDestinationMode(wrong);
    }
    m_presenter->setOutputFormat(6);
    m_presenter->setOutputFormat(-1);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(Presenter, pickersListEveryCaseInItsOrder)
{
    EXPECT_THAT(SettingsPresenter::resizeModeTitles(),
        ElementsAre(u"Max Width", u"Max Height", u"Longest Edge", u"No Resize"));
    EXPECT_THAT(SettingsPresenter::outputFormatTitles(),
        ElementsAre(u"WebP Lossy", u"WebP Lossless", u"JPEG", u"PNG", u"HEIC", u"Original Format"));
    EXPECT_THAT(SettingsPresenter::destinationModeTitles(),
        ElementsAre(u"Original Location", u"Selected Folder"));
}

TEST_F(Presenter, symbolsFollowTheResizeMode)
{
    const QStringList symbols { QStringLiteral("arrow.left.and.right"),
        QStringLiteral("arrow.up.and.down"), QStringLiteral("arrow.up.left.and.arrow.down.right"),
        QStringLiteral("aspectratio") };
    for (int mode = 0; mode < symbols.size(); ++mode) {
        m_presenter->setResizeMode(mode);
        EXPECT_EQ(m_presenter->resizeSymbol(), symbols.at(mode));
    }
    EXPECT_EQ(m_presenter->resizeText(), u"No resize");
}

TEST_F(Presenter, presetsAreTitledAsTheirMenusShowThem)
{
    EXPECT_THAT(SettingsPresenter::pixelPresets(), ElementsAre(1280, 1920, 2560, 3840));
    EXPECT_EQ(SettingsPresenter::pixelPresetTitle(1280), u"1280 px");
    EXPECT_THAT(SettingsPresenter::qualityPresets(), ElementsAre(60, 70, 80, 90, 100));
    EXPECT_EQ(SettingsPresenter::qualityPresetTitle(60), u"Quality 60");
}

TEST_F(Presenter, choosingAPixelPresetWhileResizeIsOffTurnsItOn)
{
    m_settings.setResizeMode(ResizeMode::none);
    m_presenter->choosePixelPreset(2560);
    EXPECT_EQ(m_settings.resizeMode(), ResizeMode::maxWidth);
    EXPECT_EQ(m_presenter->resizeSymbol(), u"arrow.left.and.right");
    EXPECT_EQ(m_presenter->resizeText(), u"2560px");
}

TEST_F(Presenter, choosingAPixelPresetKeepsAModeThatIsOn)
{
    m_settings.setResizeMode(ResizeMode::longestEdge);
    m_presenter->choosePixelPreset(1280);
    EXPECT_EQ(m_settings.resizeMode(), ResizeMode::longestEdge);
    EXPECT_EQ(m_settings.maximumPixels(), 1280);
}

TEST_F(Presenter, aLosslessOnlyFormatHasNoQuality)
{
    for (const OutputFormat format : allCases<OutputFormat>()) {
        m_settings.setOutputFormat(format);
        const bool isLossless = format == OutputFormat::png || format == OutputFormat::webpLossless;
        EXPECT_EQ(m_presenter->usesQuality(), !isLossless);
        EXPECT_EQ(m_presenter->qualityText(), isLossless ? u"Lossless" : u"Quality 82");
        EXPECT_EQ(
            m_presenter->qualitySymbol(), isLossless ? u"checkmark.seal" : u"slider.horizontal.3");
    }
}

TEST_F(Presenter, aQualityShowsItsIntegerPart)
{
    m_settings.setQuality(85.9);
    EXPECT_EQ(m_presenter->qualityText(), u"Quality 85");
    EXPECT_EQ(m_presenter->qualityNumberText(), u"85");
    m_settings.setQuality(1e300);
    EXPECT_EQ(m_presenter->qualityNumberText(), u"9223372036854775807");
    m_settings.setQuality(-1e300);
    EXPECT_EQ(m_presenter->qualityNumberText(), u"-9223372036854775808");
}

struct Step {
    const char* name;
    qint64 from;
    int steps;
    qint64 to;
};

class Stepper : public Presenter, public testing::WithParamInterface<Step> { };

TEST_P(Stepper, staysWithinItsBounds)
{
    m_settings.setMaximumPixels(GetParam().from);
    m_presenter->stepMaximumPixels(GetParam().steps);
    EXPECT_EQ(m_settings.maximumPixels(), GetParam().to);
}

constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();

INSTANTIATE_TEST_SUITE_P(Presenter, Stepper,
    testing::Values(Step { "up", 2560, 1, 2624 }, Step { "down", 2560, -1, 2496 },
        Step { "neverAboveTheTop", 11990, 1, 12000 }, Step { "topUp", 12000, 1, 12000 },
        Step { "neverBelowTheBottom", 100, -1, 64 }, Step { "bottomDown", 64, -1, 64 },
        Step { "typedBeyondUp", 20000, 1, 12000 }, Step { "typedBeyondDown", 20000, -1, 12000 },
        Step { "typedBelowUp", 5, 1, 69 }, Step { "typedBelowDown", 5, -1, 64 },
        Step { "typedNegativeUp", -3, 1, 64 }, Step { "hugeUp", largest, 1, 12000 },
        Step { "hugeDown", smallest, -1, 64 }),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Presenter, theStepperStopsAtItsEnds)
{
    m_settings.setMaximumPixels(12000);
    EXPECT_FALSE(m_presenter->canStepUp());
    EXPECT_TRUE(m_presenter->canStepDown());
    m_settings.setMaximumPixels(64);
    EXPECT_TRUE(m_presenter->canStepUp());
    EXPECT_FALSE(m_presenter->canStepDown());
}

TEST_F(Presenter, aTypedValueOutsideTheRangeIsKeptUntilTheStepperIsUsed)
{
    m_presenter->enterMaximumPixels(QStringLiteral("20,000"));
    EXPECT_EQ(m_settings.maximumPixels(), 20000);
    EXPECT_EQ(m_presenter->maximumPixelsText(), u"20,000");
    m_presenter->enterMaximumPixels(QStringLiteral(" 7 "));
    EXPECT_EQ(m_settings.maximumPixels(), 7);
    m_presenter->stepMaximumPixels(-1);
    EXPECT_EQ(m_settings.maximumPixels(), 64);
}

TEST_F(Presenter, typedTextThatIsNoNumberLeavesTheLimit)
{
    for (const char* text : { "", "many", "12.5", "1e3", "99999999999999999999" }) {
        const QSignalSpy changes(m_presenter.get(), &SettingsPresenter::changed);
        m_presenter->enterMaximumPixels(QString::fromLatin1(text));
        EXPECT_EQ(m_settings.maximumPixels(), 2560) << text;
        // So that the field shows the number again.
        EXPECT_EQ(changes.count(), 1);
    }
}

TEST_F(Presenter, thePixelFieldSpeaksTheLocale)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(m_presenter->maximumPixelsText(), u"2.560");
    m_presenter->enterMaximumPixels(QStringLiteral("3.840"));
    EXPECT_EQ(m_settings.maximumPixels(), 3840);
    // The chip writes the plain number.
    EXPECT_EQ(m_presenter->resizeText(), u"3840px");
}

TEST_F(Presenter, theDestinationChipNamesTheFolder)
{
    m_settings.setDestinationMode(DestinationMode::selectedFolder);
    EXPECT_EQ(m_presenter->destinationText(), u"Choose folder");
    storeFolder("/pictures/web images");
    EXPECT_EQ(m_presenter->destinationText(), u"web images");
    EXPECT_EQ(m_presenter->destinationFolderButtonTitle(), u"Change Folder...");
    EXPECT_EQ(m_presenter->destinationFolderDescription(), u"/pictures/web images");
    m_settings.setDestinationMode(DestinationMode::originalLocation);
    EXPECT_EQ(m_presenter->destinationText(), u"Original location");
    EXPECT_EQ(m_presenter->destinationFolderDescription(), u"/pictures/web images");
}

TEST_F(Presenter, aFolderWithoutANameReadsAsNoneOnTheChip)
{
    m_settings.setDestinationMode(DestinationMode::selectedFolder);
    storeFolder("/");
    EXPECT_EQ(m_presenter->destinationText(), u"Choose folder");
}

TEST_F(Presenter, aFolderThatIsGoneReadsAsNone)
{
    storeFolder("/pictures/web");
    m_bookmarks.gone.append("/pictures/web");
    EXPECT_EQ(m_presenter->destinationFolderButtonTitle(), u"Choose Folder...");
    EXPECT_EQ(
        m_presenter->destinationFolderDescription(), u"Used when Destination is Selected Folder");
    m_settings.setDestinationMode(DestinationMode::selectedFolder);
    EXPECT_EQ(m_presenter->destinationText(), u"Choose folder");
    EXPECT_EQ(m_presenter->destinationFolderDescription(), u"No folder selected");
    // Looking does not forget it: its disk may be back.
    EXPECT_EQ(m_settings.destinationFolderBookmark(), QByteArray("/pictures/web"));
}

TEST_F(Presenter, cancellingTheFolderPanelChangesNothing)
{
    storeFolder("/pictures/web");
    const QSignalSpy changes(m_presenter.get(), &SettingsPresenter::changed);
    m_presenter->chooseDestinationFolder();
    m_presenter->chooseAndUseDestinationFolder();
    EXPECT_EQ(m_panels.size(), 2U);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(m_settings.destinationFolderBookmark(), QByteArray("/pictures/web"));
    EXPECT_EQ(m_settings.destinationMode(), DestinationMode::originalLocation);
}

TEST_F(Presenter, theFolderPanelOpensInTheStoredFolder)
{
    m_presenter->chooseDestinationFolder();
    storeFolder("/pictures/web");
    m_presenter->chooseAndUseDestinationFolder();
    m_bookmarks.gone.append("/pictures/web");
    m_presenter->chooseDestinationFolder();
    ASSERT_EQ(m_panels.size(), 3U);
    EXPECT_EQ(m_panels.at(0).message, u"Choose where converted images should be saved.");
    EXPECT_EQ(m_panels.at(0).newFolders, FolderPanel::NewFolders::allowed);
    EXPECT_FALSE(m_panels.at(0).folder);
    EXPECT_EQ(m_panels.at(1).folder, folder("/pictures/web"));
    EXPECT_FALSE(m_panels.at(2).folder);
}

TEST_F(Presenter, theChooserOfThePreferencesLeavesTheModeAlone)
{
    answerWith(folder("/pictures/new"));
    m_presenter->chooseDestinationFolder();
    EXPECT_EQ(m_settings.destinationFolderBookmark(), QByteArray("/pictures/new"));
    EXPECT_EQ(m_settings.destinationMode(), DestinationMode::originalLocation);
}

TEST_F(Presenter, theChooserOfTheChipSendsOutputsToTheFolder)
{
    answerWith(folder("/pictures/new"));
    m_presenter->chooseAndUseDestinationFolder();
    EXPECT_EQ(m_presenter->destinationText(), u"new");
    EXPECT_EQ(m_settings.destinationMode(), DestinationMode::selectedFolder);
}

TEST_F(Presenter, aFolderThatCannotBeRememberedLeavesThePreviousOne)
{
    storeFolder("/pictures/web");
    m_bookmarks.canCreate = false;
    answerWith(folder("/pictures/new"));
    m_presenter->chooseAndUseDestinationFolder();
    EXPECT_EQ(m_settings.destinationFolderBookmark(), QByteArray("/pictures/web"));
    EXPECT_EQ(m_settings.destinationMode(), DestinationMode::originalLocation);
}

TEST_F(Presenter, eachChooserOpensInItsWindow)
{
    m_presenter->chooseDestinationFolder();
    m_presenter->chooseAndUseDestinationFolder();
    ASSERT_EQ(m_panels.size(), 2U);
    EXPECT_EQ(m_panels.at(0).window, FolderPanel::Window::preferences);
    EXPECT_EQ(m_panels.at(1).window, FolderPanel::Window::main);
}

TEST_F(Presenter, aChooserThatIsOpenDoesNotOpenAgain)
{
    std::vector<FolderPanelAnswer> open;
    m_answer = [&open](const FolderPanelAnswer& answer) { open.push_back(answer); };
    m_presenter->chooseDestinationFolder();
    m_presenter->chooseDestinationFolder();
    ASSERT_EQ(m_panels.size(), 1U);
    m_presenter->chooseAndUseDestinationFolder();
    m_presenter->chooseAndUseDestinationFolder();
    ASSERT_EQ(m_panels.size(), 2U) << "the other chooser is one of its own";

    open.at(0)(std::nullopt);
    m_presenter->chooseAndUseDestinationFolder();
    EXPECT_EQ(m_panels.size(), 2U);
    m_presenter->chooseDestinationFolder();
    EXPECT_EQ(m_panels.size(), 3U);
    open.at(1)(folder("/pictures/new"));
    m_presenter->chooseAndUseDestinationFolder();
    EXPECT_EQ(m_panels.size(), 4U);
}

TEST_F(Presenter, anAnswerAfterThePresentersEndIsIgnored)
{
    FolderPanelAnswer late;
    m_answer = [&late](const FolderPanelAnswer& answer) { late = answer; };
    m_presenter->chooseAndUseDestinationFolder();
    m_presenter.reset();
    late(folder("/pictures/new"));
    EXPECT_TRUE(m_settings.destinationFolderBookmark().isEmpty());
}

TEST_F(Presenter, togglesNameWhatTheyDo)
{
    m_presenter->setRemoveMetadata(false);
    EXPECT_EQ(m_presenter->metadataText(), u"Keep metadata");
    EXPECT_EQ(m_presenter->metadataSymbol(), u"doc.badge.gearshape");
    m_presenter->setOptimizeColorForSharing(false);
    EXPECT_EQ(m_presenter->colorText(), u"Original color");
}

TEST(AppVersion, fillsInWhatIsMissing)
{
    EXPECT_EQ(settings_text::appVersion(u"1.2", u"15"), u"Version 1.2 (15)");
    EXPECT_EQ(settings_text::appVersion(u"", u""), u"Version 0.0 (0)");
    EXPECT_EQ(settings_text::appVersion(u"%2", u"7"), u"Version %2 (7)");
}

} // namespace
} // namespace vellumine
