#pragma once

#include <QObject>
#include <QQmlEngine>

namespace vellumine {

/// How long things take to move, in milliseconds. With reduced motion everything happens at once.
class Motion : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool reducedMotion READ isReduced WRITE setReduced NOTIFY changed)
    Q_PROPERTY(int quick READ quick NOTIFY changed)
    Q_PROPERTY(int calm READ calm NOTIFY changed)

public:
    explicit Motion(QObject* parent = nullptr);

    [[nodiscard]] bool isReduced() const { return m_isReduced; }
    void setReduced(bool isReduced);
    [[nodiscard]] int quick() const { return m_isReduced ? 0 : 150; }
    [[nodiscard]] int calm() const { return m_isReduced ? 0 : 250; }

Q_SIGNALS:
    void changed();

private:
    bool m_isReduced = false;
};

} // namespace vellumine
