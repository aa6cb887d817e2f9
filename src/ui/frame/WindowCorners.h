#pragma once

#include <QObject>
#include <QQmlEngine>

namespace vellumine {

/// Whether the windows' corners can be round: not where what is transparent is black.
class WindowCorners : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool rounded READ areRounded WRITE setRounded NOTIFY changed)

public:
    using QObject::QObject;

    [[nodiscard]] bool areRounded() const { return m_areRounded; }
    void setRounded(bool areRounded)
    {
        if (areRounded != m_areRounded) {
            m_areRounded = areRounded;
            Q_EMIT changed();
        }
    }

Q_SIGNALS:
    void changed();

private:
    bool m_areRounded = true;
};

} // namespace vellumine
