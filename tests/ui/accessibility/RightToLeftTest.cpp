#include "ui/accessibility/Scene.h"

#include "support/EventLoop.h"
#include "ui/dialogs/DrawnDialogs.h"

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

/// The button with that text in the item; null where there is none.
const QQuickItem* buttonIn(const QQuickItem& item, const QString& text)
{
    const QList<QQuickItem*> children = item.childItems();
    for (const QQuickItem* child : children) {
        if (child->inherits("QQuickAbstractButton") && child->property("text") == text) {
            return child;
        }
        if (const QQuickItem* const found = buttonIn(*child, text)) {
            return found;
        }
    }
    return nullptr;
}

TEST(RightToLeft, mirrorsTheDialogsThatQtDraws)
{
    const test::Scene scene("DropWindowFolderPanel");
    const QQuickItem* list = nullptr;
    ASSERT_TRUE(test::runUntil([&] {
        list = DrawnDialogs::item(QStringLiteral("folderDialogListView"));
        return list != nullptr;
    }));
    const auto leftOf = [&](const char* text) {
        const QQuickItem* button = nullptr;
        EXPECT_TRUE(test::runUntil([&] {
            (void)list->window()->grabWindow(); // lays out what is seen
            button = buttonIn(*list->parentItem(), QString::fromLatin1(text));
            return button != nullptr;
        })) << text;
        return button == nullptr ? -1 : button->mapToScene(QPointF()).x();
    };
    EXPECT_LT(leftOf("Open"), leftOf("Cancel"));

    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    const auto restore
        = qScopeGuard([] { QGuiApplication::setLayoutDirection(Qt::LayoutDirectionAuto); });
    EXPECT_GT(leftOf("Open"), leftOf("Cancel"));
}

} // namespace
} // namespace vellumine
