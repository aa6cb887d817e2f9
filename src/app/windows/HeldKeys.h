#pragma once

#include <QKeyEvent>
#include <QObject>

namespace vellumine {

/// Has a key that is held press once. Its repetitions would press whatever gets the focus next: the
/// answer to a question that nobody has read yet, or the first file of a panel. Text fields get the
/// repeated space. To be installed on the application.
class HeldKeys final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] bool isRepetition(const QKeyEvent& event) const;

    int m_released = 0; ///< the last key that was
    quint64 m_releaseTime = 0;
};

} // namespace vellumine
