#include "app/windows/HeldKeys.h"

#include <QGuiApplication>
#include <QInputMethodQueryEvent>
#include <QKeyEvent>
#include <QWindow>

#include <gtest/gtest.h>

#include <vector>

namespace vellumine::test {
namespace {

/// Keeps the keys that it gets, and takes text or not.
class KeyWindow final : public QWindow {
public:
    bool takesText = false;
    std::vector<int> keys;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
            keys.push_back(static_cast<QKeyEvent*>(event)->key());
        } else if (event->type() == QEvent::InputMethodQuery) {
            static_cast<QInputMethodQueryEvent*>(event)->setValue(Qt::ImEnabled, takesText);
        }
        return QWindow::event(event);
    }
};

class HeldKeysTest : public testing::Test {
protected:
    void SetUp() override
    {
        QCoreApplication::instance()->installEventFilter(&m_heldKeys);
        m_window.show();
        m_window.requestActivate();
        QCoreApplication::processEvents();
        ASSERT_EQ(QGuiApplication::focusObject(), &m_window);
    }

    /// Presses the key, has it repeated as X does it, and releases it.
    std::vector<int> hold(Qt::Key key)
    {
        m_window.keys.clear();
        send(QEvent::KeyPress, key, false);
        for (int repetition = 0; repetition < 3; ++repetition) {
            send(QEvent::KeyRelease, key, true);
            send(QEvent::KeyPress, key, true);
        }
        send(QEvent::KeyRelease, key, false);
        return m_window.keys;
    }

    void send(QEvent::Type type, Qt::Key key, bool isRepeated, quint64 time = 0)
    {
        QKeyEvent event(type, key, Qt::NoModifier, {}, isRepeated);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(&m_window, &event);
    }

    KeyWindow m_window;

private:
    HeldKeys m_heldKeys;
};

TEST_F(HeldKeysTest, whatActivatesPressesOnce)
{
    for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space }) {
        EXPECT_EQ(hold(key), (std::vector<int> { key, key }));
    }
}

TEST_F(HeldKeysTest, aPressInTheMomentOfItsReleaseIsARepetitionThatNobodySawAsOne)
{
    send(QEvent::KeyPress, Qt::Key_Return, false, 100);
    send(QEvent::KeyRelease, Qt::Key_Return, false, 800);
    send(QEvent::KeyPress, Qt::Key_Return, false, 800);
    EXPECT_EQ(m_window.keys.size(), 2U);
    send(QEvent::KeyRelease, Qt::Key_Return, false, 840);
    m_window.keys.clear();
    send(QEvent::KeyPress, Qt::Key_Enter, false, 840);
    send(QEvent::KeyPress, Qt::Key_Return, false, 841);
    EXPECT_EQ(m_window.keys, (std::vector<int> { Qt::Key_Enter, Qt::Key_Return }));
}

TEST_F(HeldKeysTest, whatMovesIsRepeated)
{
    for (const Qt::Key key : { Qt::Key_Down, Qt::Key_PageUp, Qt::Key_Tab, Qt::Key_Backspace }) {
        EXPECT_EQ(hold(key).size(), 8U);
    }
}

TEST_F(HeldKeysTest, textGetsItsBlanksButIsEnteredOnce)
{
    m_window.takesText = true;
    EXPECT_EQ(hold(Qt::Key_Space).size(), 8U);
    EXPECT_EQ(hold(Qt::Key_Return).size(), 2U);
}

} // namespace
} // namespace vellumine::test
