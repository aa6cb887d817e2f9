import QtQuick
import QtTest
import Vellumine

Item {
    height: 300
    width: 400

    KestrovaSwitch {
        id: toggle

        text: "Remove metadata"
    }

    KestrovaSlider {
        id: slider

        from: 1
        stepSize: 1
        to: 100
        value: 50
        y: 40
    }

    KestrovaPicker {
        id: picker

        model: ["Max Width", "Max Height", "Longest Edge"]
        y: 80
    }

    KestrovaStepper {
        id: stepper

        y: 120
    }

    KestrovaTextField {
        id: field

        placeholderText: "Prefix"
        y: 160
    }

    KestrovaMenu {
        id: menu

        KestrovaMenuItem {
            text: "A rather long text of a menu that is wider than others"
        }

        KestrovaMenuItem {
            text: "Short"
        }
    }

    SignalSpy {
        id: toggled

        signalName: "toggled"
        target: toggle
    }

    QtObject {
        id: follower

        property real target
    }

    SignalSpy {
        id: moved

        signalName: "moved"
        target: slider
    }

    SignalSpy {
        id: increased

        signalName: "increased"
        target: stepper
    }

    SignalSpy {
        id: decreased

        signalName: "decreased"
        target: stepper
    }

    TestCase {
        name: "Controls"
        when: windowShown

        function init() {
            Motion.reducedMotion = true;
            for (const spy of [toggled, increased, decreased])
                spy.clear();
            stepper.canDecrease = true;
            picker.currentIndex = 0;
        }

        function test_switchByMouseAndKeyboard() {
            const before = toggle.checked;
            mouseClick(toggle);
            compare(toggle.checked, !before);
            field.forceActiveFocus();
            toggle.forceActiveFocus(Qt.TabFocusReason);
            verify(toggle.visualFocus);
            keyClick(Qt.Key_Space);
            compare(toggle.checked, before);
            compare(toggled.count, 2);
        }

        function test_switchByAScreenReader() {
            const before = toggle.checked;
            toggle.Accessible.toggleAction();
            compare(toggle.checked, !before);
            toggle.Accessible.pressAction();
            compare(toggle.checked, before);
            compare(toggled.count, 2);
        }

        function test_sliderByKeyboard() {
            slider.value = 50;
            slider.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Right);
            compare(slider.value, 51);
            slider.Accessible.decreaseAction();
            compare(slider.value, 50);
        }

        function test_sliderByKeysOfLargeSteps_data() {
            return [
                {tag: "Home", key: Qt.Key_Home, from: 50, to: 1},
                {tag: "End", key: Qt.Key_End, from: 50, to: 100},
                {tag: "Page Up", key: Qt.Key_PageUp, from: 50, to: 60},
                {tag: "Page Down", key: Qt.Key_PageDown, from: 50, to: 40},
                {tag: "Page Up near the end", key: Qt.Key_PageUp, from: 95, to: 100},
                {tag: "Page Down near the start", key: Qt.Key_PageDown, from: 5, to: 1}
            ];
        }

        function test_sliderByKeysOfLargeSteps(row) {
            slider.value = row.from;
            slider.forceActiveFocus(Qt.TabFocusReason);
            moved.clear();
            keyClick(row.key);
            compare(slider.value, row.to);
            compare(moved.count, 1);
        }

        function test_sliderFollowsItsBindingAfterAnyKey() {
            slider.forceActiveFocus(Qt.TabFocusReason);
            for (const key of [Qt.Key_Home, Qt.Key_End, Qt.Key_PageUp, Qt.Key_PageDown, Qt.Key_Right]) {
                follower.target = 30;
                slider.value = Qt.binding(() => follower.target);
                keyClick(key);
                verify(slider.value !== 30 || key === Qt.Key_Right);
                follower.target = 40;
                compare(slider.value, 40);
            }
        }

        function test_pickerIsAsWideAsItsWidestChoice() {
            verify(picker.implicitContentWidth > 60);
            compare(picker.displayText, "Max Width");
            verify(picker.contentItem.width >= picker.contentItem.contentWidth);
        }

        function test_pickerChooses() {
            picker.currentIndex = 0;
            mouseClick(picker);
            tryCompare(picker.popup, "opened", true);
            const third = picker.popup.contentItem.itemAtIndex(2);
            compare(third.text, "Longest Edge");
            mouseClick(third);
            compare(picker.currentIndex, 2);
            tryCompare(picker.popup, "visible", false);
        }

        function test_stepperByMouseKeyboardAndScreenReader() {
            mouseClick(stepper, 10, 5);
            compare(increased.count, 1);
            mouseClick(stepper, 10, stepper.height - 5);
            compare(decreased.count, 1);
            stepper.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Up);
            keyClick(Qt.Key_Down);
            stepper.Accessible.increaseAction();
            stepper.Accessible.decreaseAction();
            compare(increased.count, 3);
            compare(decreased.count, 3);
        }

        function test_stepperAtItsEnd() {
            stepper.canDecrease = false;
            mouseClick(stepper, 10, stepper.height - 5);
            stepper.forceActiveFocus();
            keyClick(Qt.Key_Down);
            compare(decreased.count, 0);
        }

        function test_placeholderShowsWhileThereIsNoText() {
            compare(field.Accessible.name, "Prefix");
            field.text = "";
            field.forceActiveFocus();
            keyClick("a");
            compare(field.text, "a");
        }

        function test_menuIsAsWideAsItsWidestLine() {
            menu.popup(0, 0);
            tryCompare(menu, "opened", true);
            verify(menu.contentWidth >= menu.itemAt(0).implicitWidth);
            menu.close();
            tryCompare(menu, "visible", false);
        }
    }
}
