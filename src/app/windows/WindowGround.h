#pragma once

#include <QColor>
#include <QObject>

namespace vellumine {

/// What of a window is not drawn yet has its colour, not that of the window manager's frame: a
/// window that grows does not flash. To be installed on windows that are opaque.
class WindowGround final : public QObject {
    Q_OBJECT

public:
    explicit WindowGround(QColor color, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QColor m_color;
};

} // namespace vellumine
