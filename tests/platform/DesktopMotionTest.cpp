#include "platform/DesktopMotion.h"

#include "support/EventLoop.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"
#include "support/bus/FakePortal.h"
#include "support/bus/OnPrivateBus.h"

#include <QDBusPendingCallWatcher>

namespace vellumine::platform {
namespace {

using test::FakePortal;
using test::runUntil;

const char* const gnome = "org.gnome.desktop.interface";

class DesktopMotionTest : public test::OnPrivateBus {
protected:
    void start(FakePortal& portal) { serve(portal, FakePortal::path(), FakePortal::name()); }
};

TEST_F(DesktopMotionTest, isReducedWhereTheDesktopSaysSo)
{
    FakePortal portal(FakePortal::animations(false));
    start(portal);
    DesktopMotion motion(client());
    EXPECT_TRUE(runUntil([&] { return motion.isReduced(); }));
}

TEST_F(DesktopMotionTest, followsChanges)
{
    FakePortal portal({});
    start(portal);
    DesktopMotion motion(client());
    ASSERT_TRUE(runUntil([&] { return portal.wasRead(); }));
    int changes = 0;
    QObject::connect(&motion, &DesktopMotion::changed, [&] { ++changes; });
    portal.switchAnimations(false);
    EXPECT_TRUE(runUntil([&] { return motion.isReduced(); }));
    portal.switchAnimations(true);
    EXPECT_TRUE(runUntil([&] { return !motion.isReduced(); }));
    EXPECT_EQ(changes, 2);
}

TEST_F(DesktopMotionTest, isAsUsualWithoutAPortalOrABus)
{
    DesktopMotion withoutPortal(client());
    DesktopMotion withoutBus(QDBusConnection(QStringLiteral("none")));
    // what is asked last is answered last
    QDBusConnection bus = client();
    bool isAnswered = false;
    auto* answer = new QDBusPendingCallWatcher(
        bus.asyncCall(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("GetId"))),
        qApp);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, [&] { isAnswered = true; });
    EXPECT_TRUE(runUntil([&] { return isAnswered; }));
    EXPECT_FALSE(withoutPortal.isReduced());
    EXPECT_FALSE(withoutBus.isReduced());
}

struct Setting {
    const char* name;
    const char* group;
    const char* key;
    QVariant value;
    std::optional<bool> isReduced;
};

class MotionSetting : public testing::TestWithParam<Setting> { };

TEST_P(MotionSetting, isUnderstood)
{
    EXPECT_EQ(asksForReducedMotion(QString::fromLatin1(GetParam().group),
                  QString::fromLatin1(GetParam().key), GetParam().value),
        GetParam().isReduced);
}

INSTANTIATE_TEST_SUITE_P(Desktops, MotionSetting,
    testing::Values(
        Setting { "sharedReduced", "org.freedesktop.appearance", "reduced-motion", 1U, true },
        Setting { "sharedUsual", "org.freedesktop.appearance", "reduced-motion", 0U, false },
        Setting { "gnomeReduced", gnome, "enable-animations", false, true },
        Setting { "gnomeUsual", gnome, "enable-animations", true, false },
        Setting { "plasmaReduced", "org.kde.kdeglobals.KDE", "AnimationDurationFactor",
            QStringLiteral("0"), true },
        Setting { "plasmaSlow", "org.kde.kdeglobals.KDE", "AnimationDurationFactor",
            QStringLiteral("2"), false },
        Setting { "plasmaWithoutANumber", "org.kde.kdeglobals.KDE", "AnimationDurationFactor",
            QStringLiteral(""), false },
        Setting { "anotherSetting", gnome, "clock-format", 1U, std::nullopt }),
    test::RowName());

} // namespace
} // namespace vellumine::platform
