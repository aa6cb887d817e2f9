#include "batch/LeftoverOutputs.h"

#include "platform/FilePath.h"
#include "support/FakeProgram.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

constexpr const char* leftOver = ".vellumine-01234567-89AB-4DEF-8123-456789ABCDEF.part";

class LeftoverOutputs : public testing::Test {
protected:
    LeftoverOutputs()
    {
        for (const char* name : { "sources", "chosen", "other" }) {
            std::filesystem::create_directory(m_folder / name);
            test::writeFile(m_folder / name / leftOver, std::string_view("half"));
        }
    }

    [[nodiscard]] QList<QUrl> sources() const
    {
        return { platform::fileUrl(m_folder / "sources/a.png"),
            platform::fileUrl(m_folder / "sources/b.png") };
    }

    test::TemporaryFolder m_folder;
    OptimizerSettings m_settings;
};

TEST_F(LeftoverOutputs, areRemovedBesideTheSources)
{
    m_settings.destinationMode = DestinationMode::originalLocation;
    removeLeftoverOutputs(sources(), m_settings);
    EXPECT_EQ(test::listing(m_folder / "sources"), "");
    EXPECT_EQ(test::listing(m_folder / "chosen"), leftOver);
    EXPECT_EQ(test::listing(m_folder / "other"), leftOver);
}

TEST_F(LeftoverOutputs, areRemovedInTheChosenFolder)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    m_settings.destinationFolderURL = platform::fileUrl(m_folder / "chosen");
    removeLeftoverOutputs(sources(), m_settings);
    EXPECT_EQ(test::listing(m_folder / "sources"), leftOver);
    EXPECT_EQ(test::listing(m_folder / "chosen"), "");
    EXPECT_EQ(test::listing(m_folder / "other"), leftOver);
}

TEST_F(LeftoverOutputs, areRemovedWhereAPrefixLeadsTo)
{
    m_settings.filenamePrefix = QStringLiteral("../other/small-");
    removeLeftoverOutputs(sources(), m_settings);
    EXPECT_EQ(test::listing(m_folder / "sources"), leftOver);
    EXPECT_EQ(test::listing(m_folder / "other"), "");

    m_settings.filenamePrefix.clear();
    m_settings.filenameSuffix = QStringLiteral("/small");
    std::filesystem::create_directory(m_folder / "chosen/a");
    test::writeFile(m_folder / "chosen/a" / leftOver, std::string_view("half"));
    m_settings.destinationMode = DestinationMode::selectedFolder;
    m_settings.destinationFolderURL = platform::fileUrl(m_folder / "chosen");
    removeLeftoverOutputs(sources(), m_settings);
    EXPECT_EQ(test::listing(m_folder / "chosen/a"), "");
    EXPECT_EQ(test::listing(m_folder / "chosen"), std::string(leftOver) + " a");
}

TEST_F(LeftoverOutputs, withoutAFolderNothingIsTouched)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    removeLeftoverOutputs(sources(), m_settings);
    EXPECT_EQ(test::listing(m_folder / "sources"), leftOver);
}

} // namespace
} // namespace vellumine
