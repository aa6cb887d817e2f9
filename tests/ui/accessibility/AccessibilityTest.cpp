#include "ui/accessibility/Scene.h"

#include "support/EventLoop.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"
#include "ui/fakes/UpdateFixture.h"
#include "ui/settings/SettingsPresenter.h"

#include <gtest/gtest.h>

#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>

#include <set>

namespace vellumine {
namespace {

using test::Scene;

struct Window {
    const char* name;
    int controls; ///< that it shows at least
    int stops; ///< of the Tab key, at least
};

class EveryWindow : public testing::TestWithParam<Window> { };

bool isControl(const QAccessibleInterface& element)
{
    static const std::set<QAccessible::Role> roles { QAccessible::Button, QAccessible::ButtonMenu,
        QAccessible::CheckBox, QAccessible::ComboBox, QAccessible::EditableText, QAccessible::Link,
        QAccessible::MenuItem, QAccessible::Slider, QAccessible::SpinBox, QAccessible::ListItem };
    return roles.contains(element.role());
}

TEST_P(EveryWindow, givesEveryControlARoleAndAName)
{
    const Scene scene(GetParam().name);
    int controls = 0;
    const auto elements = scene.elements();
    for (QAccessibleInterface* element : elements) {
        const auto described = [&] {
            return element->object()->metaObject()->className() + std::string(" ")
                + element->object()->objectName().toStdString() + " with the role "
                + std::to_string(element->role());
        };
        EXPECT_FALSE(element->role() == QAccessible::NoRole) << described();
        if (element->state().focusable) {
            EXPECT_FALSE(element->text(QAccessible::Name).isEmpty()) << described();
        }
        if (isControl(*element)) {
            ++controls;
            EXPECT_FALSE(element->text(QAccessible::Name).isEmpty()) << described();
        }
    }
    EXPECT_GE(controls, GetParam().controls);
}

TEST_P(EveryWindow, letsTheTabKeyReachEveryControl)
{
    const Scene scene(GetParam().name);
    std::set<const QQuickItem*> unreached;
    const auto elements = scene.elements();
    for (QAccessibleInterface* element : elements) {
        const auto* item = qobject_cast<QQuickItem*>(element->object());
        if (item != nullptr && item->activeFocusOnTab() && item->isEnabled()) {
            unreached.insert(item);
        }
    }
    EXPECT_GE(static_cast<int>(unreached.size()), GetParam().stops);
    for (std::size_t press = 2 * unreached.size() + 2; press > 0; --press) {
        QTest::keyClick(&scene.window(), Qt::Key_Tab);
        std::erase_if(unreached, [](const QQuickItem* item) { return item->hasActiveFocus(); });
    }
    for (const QQuickItem* item : unreached) {
        ADD_FAILURE() << item->metaObject()->className() << ' ' << item->objectName().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Gallery, EveryWindow,
    testing::Values(Window { "DropWindowNine", 28, 15 }, Window { "DropWindowConverting", 15, 14 },
        Window { "DropWindowUpdateFailed", 15, 14 }, Window { "DropWindowUpdateAvailable", 15, 14 },
        Window { "Preferences", 20, 18 }, Window { "Comparison50", 5, 5 }),
    test::RowName());

/// What a screen reader's "press" leads to, for every button and link of the main window.
TEST(ScreenReader, pressesWhateverAClickPresses)
{
    const BrowserFixture browser; // opens nothing
    const Scene scene("DropWindowNine");
    const auto elements = scene.elements();
    int pressed = 0;
    for (QAccessibleInterface* element : elements) {
        QObject* control = element->object();
        if (element->role() != QAccessible::Button && element->role() != QAccessible::ButtonMenu
            && element->role() != QAccessible::Link) {
            continue;
        }
        const std::string name = element->text(QAccessible::Name).toStdString();
        QAccessibleActionInterface* actions = element->actionInterface();
        ASSERT_NE(actions, nullptr) << name;
        EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()))
            << name;
        if (control->property("menu").isValid()) {
            continue; // what it opens is the next test's
        }
        const QSignalSpy clicks(control, SIGNAL(clicked()));
        actions->doAction(QAccessibleActionInterface::pressAction());
        EXPECT_EQ(clicks.count(), 1) << name;
        ++pressed;
    }
    EXPECT_GE(pressed, 18);
}

TEST(ScreenReader, movesTheSplitOfAComparison)
{
    const Scene scene("Comparison50");
    QAccessibleInterface* slider
        = scene.element(QAccessible::Slider, QStringLiteral("Before / After Review"));
    ASSERT_NE(slider, nullptr);
    QAccessibleValueInterface* value = slider->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue().toDouble(), 0);
    EXPECT_EQ(value->maximumValue().toDouble(), 100);
    EXPECT_EQ(value->currentValue().toDouble(), 50);

    slider->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(value->currentValue().toDouble(), 51);
    EXPECT_EQ(slider->text(QAccessible::Description), QStringLiteral("51% before"));
    slider->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
    slider->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
    EXPECT_EQ(value->currentValue().toDouble(), 49);

    value->setCurrentValue(100);
    EXPECT_EQ(slider->text(QAccessible::Description), QStringLiteral("100% before"));
    QTest::keyClick(&scene.window(), Qt::Key_Tab); // until the canvas has the keys
    for (int press = 0; press < 10 && !slider->state().focused; ++press) {
        QTest::keyClick(&scene.window(), Qt::Key_Tab);
    }
    QTest::keyClick(&scene.window(), Qt::Key_Home);
    EXPECT_EQ(value->currentValue().toDouble(), 0);
}

/// What a button that opens a menu is to a screen reader. To older versions of Qt every button is a
/// plain one whatever it says, and so is every link.
QAccessible::Role menuButton(const Scene& scene)
{
    const QString link = QStringLiteral("Buy me a coffee");
    return scene.element(QAccessible::Link, link) != nullptr ? QAccessible::ButtonMenu
                                                             : QAccessible::Button;
}

TEST(ScreenReader, opensTheMenuOfAChipAndChooses)
{
    const Scene scene("DropWindowEmpty");
    const auto press = [&](QAccessible::Role role, const char* name) {
        QAccessibleInterface* element = nullptr;
        // What fades in is not there at once in every version of Qt.
        ASSERT_TRUE(test::runUntil([&] {
            element = scene.element(role, QString::fromLatin1(name));
            return element != nullptr;
        })) << name;
        element->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCoreApplication::processEvents();
        (void)scene.window().grabWindow();
    };
    press(menuButton(scene), "WebP Lossy");
    press(QAccessible::MenuItem, "JPEG");
    EXPECT_NE(scene.element(menuButton(scene), QStringLiteral("JPEG")), nullptr);
}

TEST(ScreenReader, togglesASwitch)
{
    const Scene scene("Preferences");
    QAccessibleInterface* element
        = scene.element(QAccessible::CheckBox, QStringLiteral("Move original to Trash"));
    ASSERT_NE(element, nullptr);
    EXPECT_FALSE(element->state().checked);
    element->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(element->state().checked);
    EXPECT_TRUE(
        scene.window().property("settings").value<SettingsPresenter*>()->moveOriginalToTrash());
}

} // namespace
} // namespace vellumine
