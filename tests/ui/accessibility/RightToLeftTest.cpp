#include "ui/accessibility/Scene.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQuickItem>
#include <QScopeGuard>

namespace vellumine {
namespace {

/// Where the control is, from the window's left edge.
double leftOf(const test::Scene& scene, const char* name)
{
    return dynamic_cast<QQuickItem&>(scene.item(name)).mapToScene(QPointF()).x();
}

TEST(RightToLeft, mirrorsTheWindowAndAllThatIsInIt)
{
    const test::Scene leftToRight("DropWindowNine");
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    const auto restore
        = qScopeGuard([] { QGuiApplication::setLayoutDirection(Qt::LayoutDirectionAuto); });
    const test::Scene rightToLeft("DropWindowNine");
    for (const char* name : { "menuButton", "closeButton" }) {
        const double width = dynamic_cast<QQuickItem&>(leftToRight.item(name)).width();
        EXPECT_EQ(leftOf(rightToLeft, name),
            leftToRight.window().width() - width - leftOf(leftToRight, name))
            << name;
    }
    EXPECT_LT(leftOf(rightToLeft, "closeButton"), leftOf(rightToLeft, "menuButton"));
}

} // namespace
} // namespace vellumine
