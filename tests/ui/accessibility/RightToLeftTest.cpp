#include "ui/accessibility/Scene.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQuickItem>
#include <QScopeGuard>

namespace vellumine {
namespace {

/// Where the control is in the window, and how much room there is on both sides of it.
struct Place {
    double left;
    double right;
};

Place placeOf(const test::Scene& scene, const char* name)
{
    const auto& item = dynamic_cast<QQuickItem&>(scene.item(name));
    const double left = item.mapToScene(QPointF()).x();
    return { left, scene.window().width() - left - item.width() };
}

TEST(RightToLeft, mirrorsTheWindowAndAllThatIsInIt)
{
    const test::Scene scene("DropWindowNine");
    const Place menu = placeOf(scene, "menuButton");
    const Place close = placeOf(scene, "closeButton");
    EXPECT_LT(menu.left, close.left);

    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    const auto restore
        = qScopeGuard([] { QGuiApplication::setLayoutDirection(Qt::LayoutDirectionAuto); });
    EXPECT_EQ(placeOf(scene, "menuButton").left, menu.right);
    EXPECT_EQ(placeOf(scene, "closeButton").left, close.right);
}

} // namespace
} // namespace vellumine
