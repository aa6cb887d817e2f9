#pragma once

#include <QObject>
#include <QQmlEngine>

namespace vellumine {

/// Whether the desktop has a menu bar for the windows of all programs. Then ours have their menu
/// there as well.
class GlobalMenu : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool present READ isPresent WRITE setPresent NOTIFY changed)

public:
    explicit GlobalMenu(QObject* parent = nullptr)
        : QObject(parent)
    {
    }

    [[nodiscard]] bool isPresent() const { return m_isPresent; }
    void setPresent(bool isPresent)
    {
        if (isPresent != m_isPresent) {
            m_isPresent = isPresent;
            Q_EMIT changed();
        }
    }

Q_SIGNALS:
    void changed();

private:
    bool m_isPresent = false;
};

} // namespace vellumine
