#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "platform/FilePath.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <future>
#include <limits>
#include <stop_token>

namespace vellumine {
namespace {

using namespace std::chrono_literals;
using platform::ExistingItem;
using test::listing;
using test::textOf;
using test::urlOf;
using test::writeFile;

/// Writes "encoded" to the path behind "-o".
constexpr std::string_view copyingEncoder = R"(
while [ "$1" != "-o" ]; do shift; done
printf encoded > "$2"
)";

class CWebP : public testing::Test {
protected:
    [[nodiscard]] std::filesystem::path output() const
    {
        return m_workplace.pictures() / "out.webp";
    }

    Outcome<void> encode(ExistingItem existing = ExistingItem::replace) const
    {
        return ImageOptimizer::encodeWebPWithCWebP(
            test::gradient({ 47, 33 }, imaging::rgba8Premultiplied), urlOf(output()), existing,
            m_settings, {}, m_workplace.environment());
    }

    void expectFailure(std::string_view message) const
    {
        const auto encoded = encode();
        ASSERT_FALSE(encoded);
        EXPECT_EQ(localizedDescription(encoded.error()).toStdString(), message);
        EXPECT_EQ(listing(m_workplace.temporary()), "");
    }

    void TearDown() override { qunsetenv("VELLUMINE_CWEBP_PATH"); }

    test::Workplace m_workplace;
    OptimizerSettings m_settings;
};

TEST_F(CWebP, writesAFileThatDecodesToThePicture)
{
    m_settings.outputFormat = OutputFormat::webpLossless;
    ASSERT_TRUE(encode());
    const auto picture = test::readPicture(output());
    EXPECT_EQ(picture.size(), test::oddSize);
    EXPECT_TRUE(picture.hasAlpha());
    EXPECT_EQ(listing(m_workplace.temporary()), "");
    EXPECT_EQ(listing(m_workplace.pictures()), "out.webp");
}

struct ArgumentRow {
    const char* name;
    OutputFormat format;
    double quality;
    bool removeMetadata;
    bool removeColorManagement;
    const char* expected;
};

class CWebPArguments : public CWebP, public testing::WithParamInterface<ArgumentRow> { };

TEST_P(CWebPArguments, areInThisOrder)
{
    m_workplace.replaceEncoder(R"(printf '%s\n' "$@" > ')"
        + (m_workplace.programs() / "arguments").string() + "'\n" + std::string(copyingEncoder));
    m_settings.outputFormat = GetParam().format;
    m_settings.quality = GetParam().quality;
    m_settings.removeMetadata = GetParam().removeMetadata;
    m_settings.removeColorManagement = GetParam().removeColorManagement;
    ASSERT_TRUE(encode());
    std::string arguments = textOf(m_workplace.programs() / "arguments");
    // The two temporary names are told apart by their UUIDs: in capitals, each its own.
    const std::string folder = m_workplace.temporary().string() + "/vellumine-";
    for (const char* mark : { "PAM", "WEBP" }) {
        const auto at = arguments.find(folder);
        ASSERT_NE(at, std::string::npos) << arguments;
        const std::string uuid = arguments.substr(at + folder.size(), 36);
        EXPECT_EQ(QUuid::fromString(QString::fromStdString(uuid))
                      .toString(QUuid::WithoutBraces)
                      .toUpper()
                      .toStdString(),
            uuid);
        arguments.replace(at, folder.size() + 36, mark);
        EXPECT_EQ(arguments.find(uuid), std::string::npos);
    }
    EXPECT_EQ(arguments, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, CWebPArguments,
    testing::Values(ArgumentRow { "lossyWithNothingKept", OutputFormat::webp, 82.9, true, true,
                        "-quiet\n-metadata\nnone\n-q\n82\nPAM.pam\n-o\nWEBP.webp\n" },
        ArgumentRow { "lossyWithTheProfile", OutputFormat::webp, 100, true, false,
            "-quiet\n-metadata\nicc\n-q\n100\nPAM.pam\n-o\nWEBP.webp\n" },
        ArgumentRow { "lossyWithMetadata", OutputFormat::webp, 0.99, false, true,
            "-quiet\n-metadata\nexif,xmp\n-q\n0\nPAM.pam\n-o\nWEBP.webp\n" },
        ArgumentRow { "lossyWithAll", OutputFormat::webp, -3.7, false, false,
            "-quiet\n-metadata\nall\n-q\n-3\nPAM.pam\n-o\nWEBP.webp\n" },
        ArgumentRow { "lossless", OutputFormat::webpLossless, 82, true, true,
            "-quiet\n-metadata\nnone\n-lossless\nPAM.pam\n-o\nWEBP.webp\n" },
        ArgumentRow { "losslessWithAll", OutputFormat::webpLossless, 82, false, false,
            "-quiet\n-metadata\nall\n-lossless\nPAM.pam\n-o\nWEBP.webp\n" }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(CWebP, encoderFindsAllocatorSettingsUnlessTheUserHasSome)
{
    const std::filesystem::path seen = m_workplace.programs() / "environment";
    m_workplace.replaceEncoder("printf '%s' \"$GLIBC_TUNABLES\" > '" + seen.string() + "'\n"
        + std::string(copyingEncoder));
    ASSERT_TRUE(encode());
    EXPECT_NE(textOf(seen).find("glibc.malloc.hugetlb=1"), std::string::npos) << textOf(seen);

    qputenv("GLIBC_TUNABLES", "glibc.malloc.check=0");
    const auto cleanUp = qScopeGuard([] { qunsetenv("GLIBC_TUNABLES"); });
    std::filesystem::remove(m_workplace.pictures() / "out.webp");
    ASSERT_TRUE(encode());
    EXPECT_EQ(textOf(seen), "glibc.malloc.check=0");
}

using CWebPDeathTest = CWebP;

TEST_F(CWebPDeathTest, aQualityThatIsNoIntegerIsFatal)
{
    m_settings.quality = std::numeric_limits<double>::quiet_NaN();
    EXPECT_DEATH((void)encode(), "quality");
    m_settings.quality = 1e19;
    EXPECT_DEATH((void)encode(), "quality");
}

TEST_F(CWebP, errorTextOfANonZeroExitIsShownTrimmed)
{
    m_workplace.replaceEncoder("printf '\\n  cannot do it \\n\\n' >&2\nexit 3\n");
    expectFailure("Could not finish writing out.webp: cannot do it");
    EXPECT_EQ(listing(m_workplace.pictures()), "");
}

TEST_F(CWebP, silentNonZeroExitShowsTheStatus)
{
    m_workplace.replaceEncoder("exit 42\n");
    expectFailure("Could not finish writing out.webp: cwebp exited with status 42");
}

TEST_F(CWebP, errorTextThatIsNoUtf8CountsAsAbsent)
{
    m_workplace.replaceEncoder("printf 'bad \\377 text' >&2\nexit 5\n");
    expectFailure("Could not finish writing out.webp: cwebp exited with status 5");
}

TEST_F(CWebP, endByASignalShowsItsNumber)
{
    m_workplace.replaceEncoder("kill -KILL $$\n");
    expectFailure("Could not finish writing out.webp: cwebp exited with status 9");
}

TEST_F(CWebP, failureAfterTheOutputWasWrittenLeavesNothing)
{
    m_workplace.replaceEncoder(std::string(copyingEncoder) + "exit 1\n");
    expectFailure("Could not finish writing out.webp: cwebp exited with status 1");
    EXPECT_EQ(listing(m_workplace.pictures()), "");
}

TEST_F(CWebP, successWithoutAnOutputFileFails)
{
    m_workplace.replaceEncoder("exit 0\n");
    expectFailure("Could not finish writing out.webp: cwebp did not create an output file");
}

TEST_F(CWebP, outputWrittenElsewhereFails)
{
    m_workplace.replaceEncoder(
        "printf x > '" + (m_workplace.programs() / "elsewhere").string() + "'\nexit 0\n");
    expectFailure("Could not finish writing out.webp: cwebp did not create an output file");
}

TEST_F(CWebP, outputThatEndsBeforeItsTimeFails)
{
    const auto writing = [](std::string_view text) {
        return "while [ \"$1\" != \"-o\" ]; do shift; done\nprintf '" + std::string(text)
            + "' > \"$2\"\nexit 0\n";
    };
    writeFile(output(), "the one before");
    for (const std::string_view text :
        { "", "RIFF", R"(RIFF\005\000\000\000WEBP)", R"(RIFF\000\001\000\000WEBP)" }) {
        m_workplace.replaceEncoder(writing(text));
        expectFailure("Could not finish writing out.webp: cwebp left an incomplete output file");
        EXPECT_EQ(textOf(output()), "the one before");
    }
    m_workplace.replaceEncoder(writing(R"(RIFF\004\000\000\000WEBP)"));
    EXPECT_TRUE(encode());
}

TEST_F(CWebP, aMegabyteOfErrorTextBlocksNothingAndIsIgnoredOnSuccess)
{
    m_workplace.replaceEncoder(
        "head -c 1000000 /dev/zero | tr '\\0' x >&2\n" + std::string(copyingEncoder));
    ASSERT_TRUE(encode());
    EXPECT_EQ(textOf(output()), "encoded");
    EXPECT_EQ(listing(m_workplace.temporary()), "");
}

TEST_F(CWebP, withoutAnEncoderTwoSentencesRunTogether)
{
    m_workplace.removeEncoder();
    expectFailure("WebP support is not bundled in this build. is not supported by this macOS "
                  "ImageIO installation.");
}

TEST_F(CWebP, encoderThatCannotBeStartedIsNamedWithTheReason)
{
    m_workplace.removeEncoder();
    writeFile(m_workplace.programs() / "cwebp", "\x01\x02");
    std::filesystem::permissions(
        m_workplace.programs() / "cwebp", std::filesystem::perms::owner_all);
    expectFailure("WebP encoder at " + (m_workplace.programs() / "cwebp").string()
        + " could not be launched: Exec format error is not supported by this macOS ImageIO "
          "installation.");
}

TEST_F(CWebP, withoutATemporaryFolderThePamFileIsNamed)
{
    std::filesystem::remove(m_workplace.temporary());
    const auto encoded = encode();
    ASSERT_FALSE(encoded);
    const QString text = localizedDescription(encoded.error());
    EXPECT_TRUE(text.startsWith(QStringLiteral("Could not finish writing vellumine-")))
        << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral(".pam: No such file or directory")))
        << text.toStdString();
}

TEST_F(CWebP, copyThatFailsHasTheSystemsText)
{
    m_workplace.replaceEncoder(copyingEncoder);
    std::filesystem::remove(m_workplace.pictures());
    expectFailure("Could not save out.webp: No such file or directory");
}

TEST_F(CWebP, folderOfTheOutputThatIsAFileHasTheSystemsText)
{
    m_workplace.replaceEncoder(copyingEncoder);
    std::filesystem::remove(m_workplace.pictures());
    writeFile(m_workplace.pictures(), "a file");
    expectFailure("Could not save out.webp: Not a directory");
}

TEST_F(CWebP, aFileThatAppearedMeanwhileIsKept)
{
    m_workplace.replaceEncoder(
        "printf other > '" + output().string() + "'\n" + std::string(copyingEncoder));
    const auto encoded = encode(ExistingItem::keep);
    ASSERT_FALSE(encoded);
    EXPECT_EQ(localizedDescription(encoded.error()),
        QStringLiteral("Could not save out.webp: File exists"));
    EXPECT_EQ(textOf(output()), "other");
    EXPECT_EQ(listing(m_workplace.pictures()), "out.webp");
    EXPECT_EQ(listing(m_workplace.temporary()), "");
}

TEST_F(CWebP, existingOutputStandsUntilTheNewOneIsComplete)
{
    writeFile(output(), "old");
    m_workplace.replaceEncoder("cat '" + output().string() + "' > '"
        + (m_workplace.programs() / "seen").string() + "'\n" + std::string(copyingEncoder));
    ASSERT_TRUE(encode());
    EXPECT_EQ(textOf(m_workplace.programs() / "seen"), "old");
    EXPECT_EQ(textOf(output()), "encoded");
}

TEST_F(CWebP, anEncoderThatHangsIsKilledAndNamed)
{
    m_workplace.replaceEncoder(
        "while [ \"$1\" != \"-o\" ]; do shift; done\nprintf half > \"$2\"\nsleep 1000\n");
    writeFile(output(), "old");
    auto environment = m_workplace.environment();
    environment.encoderPatience = { .atLeast = 200ms, .perMegapixel = 0ms };
    const auto encoded = ImageOptimizer::encodeWebPWithCWebP(
        test::gradient({ 47, 33 }, imaging::rgba8Premultiplied), urlOf(output()),
        ExistingItem::replace, m_settings, {}, environment);
    ASSERT_FALSE(encoded);
    EXPECT_EQ(localizedDescription(encoded.error()),
        QStringLiteral("Could not finish writing out.webp: cwebp did not finish within 1 seconds"));
    EXPECT_EQ(listing(m_workplace.temporary()), "");
    EXPECT_EQ(listing(m_workplace.pictures()), "out.webp");
    EXPECT_EQ(textOf(output()), "old");
}

TEST(EncoderPatience, growsWithThePixels)
{
    EXPECT_EQ(EncoderPatience().forPicture({ 47, 33 }), 2min + 46ms);
    EXPECT_EQ(EncoderPatience().forPicture({ 6000, 4000 }), 2min + 24 * 30s);
    EXPECT_EQ(EncoderPatience().forPicture({ 16383, 16383 }), 2min + 8052080ms);
}

TEST_F(CWebP, aMegabyteOfErrorTextIsTheMessageOfAFailure)
{
    m_workplace.replaceEncoder("head -c 1000000 /dev/zero | tr '\\0' x >&2\nexit 1\n");
    expectFailure("Could not finish writing out.webp: " + std::string(1'000'000, 'x'));
}

TEST_F(CWebP, anEncoderBesideTheProgramThatCannotBeExecutedCountsAsMissing)
{
    m_workplace.removeEncoder();
    writeFile(m_workplace.programs() / "cwebp", "x");
    expectFailure("WebP support is not bundled in this build. is not supported by this macOS "
                  "ImageIO installation.");
}

TEST_F(CWebP, namesThatBeginWithADashAreNoOptions)
{
    m_settings.outputFormat = OutputFormat::webpLossless;
    const QUrl dash = urlOf(m_workplace.pictures() / "-version.webp");
    ASSERT_TRUE(
        ImageOptimizer::encodeWebPWithCWebP(test::gradient({ 47, 33 }, imaging::rgba8Premultiplied),
            dash, ExistingItem::replace, m_settings, {}, m_workplace.environment()));
    EXPECT_EQ(test::readPicture(m_workplace.pictures() / "-version.webp").size(), test::oddSize);
}

TEST_F(CWebP, encoderOfTheEnvironmentComesFirst)
{
    test::writeProgram(m_workplace.pictures() / "mine", "exit 0\n");
    qputenv("VELLUMINE_CWEBP_PATH", (m_workplace.pictures() / "mine").c_str());
    EXPECT_EQ(ImageOptimizer::bundledCWebPExecutableURL(m_workplace.programs()),
        urlOf(m_workplace.pictures() / "mine"));
}

TEST_F(CWebP, encoderOfTheEnvironmentMayHaveAnyName)
{
    test::writeProgram(m_workplace.pictures() / "mine\xFF", "exit 0\n");
    qputenv("VELLUMINE_CWEBP_PATH", (m_workplace.pictures() / "mine\xFF").c_str());
    const auto encoder = ImageOptimizer::bundledCWebPExecutableURL(m_workplace.programs());
    ASSERT_TRUE(encoder);
    EXPECT_EQ(platform::toPath(*encoder), m_workplace.pictures() / "mine\xFF");
}

TEST_F(CWebP, missingEncoderOfTheEnvironmentGivesWayToTheBundledOne)
{
    qputenv("VELLUMINE_CWEBP_PATH", (m_workplace.pictures() / "missing").c_str());
    EXPECT_EQ(ImageOptimizer::bundledCWebPExecutableURL(m_workplace.programs()),
        urlOf(m_workplace.programs() / "cwebp"));
    qputenv("VELLUMINE_CWEBP_PATH", "");
    EXPECT_EQ(ImageOptimizer::bundledCWebPExecutableURL(m_workplace.programs()),
        urlOf(m_workplace.programs() / "cwebp"));
}

TEST_F(CWebP, encoderOfTheEnvironmentThatCannotBeExecutedGivesWay)
{
    writeFile(m_workplace.pictures() / "mine", "x");
    qputenv("VELLUMINE_CWEBP_PATH", (m_workplace.pictures() / "mine").c_str());
    EXPECT_EQ(ImageOptimizer::bundledCWebPExecutableURL(m_workplace.programs()),
        urlOf(m_workplace.programs() / "cwebp"));
    m_workplace.removeEncoder();
    EXPECT_EQ(ImageOptimizer::bundledCWebPExecutableURL(m_workplace.programs()), std::nullopt);
}

TEST_F(CWebP, anInterruptionKillsTheEncoderAndLeavesNothingBehind)
{
    const std::filesystem::path started = m_workplace.programs() / "started";
    ASSERT_EQ(::mkfifo(started.c_str(), 0600), 0);
    m_workplace.replaceEncoder("while [ \"$1\" != \"-o\" ]; do shift; done\nprintf half > \"$2\"\n"
                               "echo started > '"
        + started.string() + "'\nsleep 1000\n");
    writeFile(output(), "old");
    std::stop_source stop;
    auto environment = m_workplace.environment();
    environment.interruption = stop.get_token();
    auto outcome = std::async(std::launch::async, [&] {
        return ImageOptimizer::encodeWebPWithCWebP(
            test::gradient({ 47, 33 }, imaging::rgba8Premultiplied), urlOf(output()),
            ExistingItem::replace, m_settings, {}, environment);
    });
    std::ifstream reader(started);
    std::string line;
    std::getline(reader, line);
    EXPECT_EQ(listing(m_workplace.temporary()).empty(), false);
    stop.request_stop();
    const auto encoded = outcome.get();
    ASSERT_FALSE(encoded);
    EXPECT_EQ(localizedDescription(encoded.error()), QStringLiteral("Operation canceled"));
    EXPECT_EQ(listing(m_workplace.temporary()), "");
    EXPECT_EQ(listing(m_workplace.pictures()), "out.webp");
    EXPECT_EQ(textOf(output()), "old");
}

} // namespace
} // namespace vellumine
