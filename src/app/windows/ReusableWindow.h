#pragma once

#include "app/instance/ActivationToken.h"

#include <QObject>
#include <QQuickWindow>
#include <QRect>

#include <functional>
#include <memory>
#include <optional>

namespace vellumine {

/// A window that is made when it is first shown. Closing it only hides it: the same one comes back,
/// where it was. If it was maximised, it is again, and can be restored to the size that it had.
class ReusableWindow final : public QObject {
    Q_OBJECT

public:
    /// Makes the window, hidden, with its size set. Null where that fails.
    using Make = std::function<std::unique_ptr<QQuickWindow>()>;

    explicit ReusableWindow(Make make, QObject* parent = nullptr);
    ~ReusableWindow() override;

    /// Makes it in the middle of the screen, or shows it again, in front.
    void show(const ActivationToken& token = {});

    /// Null before it was first shown.
    [[nodiscard]] QQuickWindow* window() const { return m_window.get(); }

Q_SIGNALS:
    void made(QQuickWindow* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void placeAgain();

    Make m_make;
    std::unique_ptr<QQuickWindow> m_window;
    std::optional<QRect> m_frame; ///< what it had last, but for a whole screen
};

} // namespace vellumine
