#include "core/VellumineSettings.h"
#include "support/SmallDisk.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>

#include <memory>

namespace vellumine {
namespace {

TEST(SettingsOnAFullDisk, keepTheOldFileWhole)
{
    const auto disk = test::SmallDisk::create(std::size_t { 64 } << 10U);
    if (!disk) {
        GTEST_SKIP() << "Only a superuser may mount a small disk.";
    }
    const QString path = QFile::decodeName((disk->path() / "preferences").c_str());
    QSettings preferences(path, QSettings::IniFormat);
    preferences.setValue(QStringLiteral("quality"), 42);
    preferences.sync();
    const auto before = test::readFile(disk->path() / "preferences");
    ASSERT_FALSE(before.empty());
    disk->fill();
    preferences.setValue(QStringLiteral("filenameSuffix"), QString(8000, u'x'));
    preferences.sync();
    EXPECT_EQ(test::readFile(disk->path() / "preferences"), before);
}

} // namespace
} // namespace vellumine
