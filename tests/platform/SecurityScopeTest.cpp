#include "platform/SecurityScope.h"
#include "platform/FilePath.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::platform {
namespace {

class RecordingScope final : public SecurityScope {
public:
    explicit RecordingScope(bool grants)
        : m_grants(grants)
    {
    }
    bool startAccessing(const QUrl& /*url*/) override
    {
        ++started;
        return m_grants;
    }
    void stopAccessing(const QUrl& /*url*/) override { ++stopped; }

    int started = 0;
    int stopped = 0;

private:
    bool m_grants;
};

QUrl url(const std::filesystem::path& path)
{
    return fileUrl(QString::fromStdString(path.string()));
}

TEST(SecurityScope, everythingIsGrantedOutsideASandbox)
{
    DesktopSecurityScope scope(DesktopSecurityScope::Sandbox::none);
    EXPECT_TRUE(scope.startAccessing(url("/no/such/file")));
}

TEST(SecurityScope, aSandboxGrantsWhatCanBeWritten)
{
    const test::TemporaryFolder folder;
    DesktopSecurityScope scope(DesktopSecurityScope::Sandbox::flatpak);
    EXPECT_TRUE(scope.startAccessing(url(folder.path())));
    EXPECT_FALSE(scope.startAccessing(url(folder / "none")));
}

TEST(ScopedAccess, endsWhatStartedExactlyOnce)
{
    RecordingScope scope(true);
    {
        const ScopedAccess access(scope, url("/a"));
        EXPECT_TRUE(access.isGranted());
        EXPECT_EQ(scope.stopped, 0);
    }
    EXPECT_EQ(scope.started, 1);
    EXPECT_EQ(scope.stopped, 1);
}

TEST(ScopedAccess, neverEndsWhatDidNotStart)
{
    RecordingScope scope(false);
    {
        const ScopedAccess access(scope, url("/a"));
        EXPECT_FALSE(access.isGranted());
    }
    EXPECT_EQ(scope.stopped, 0);
}

} // namespace
} // namespace vellumine::platform
