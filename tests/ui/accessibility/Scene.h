#pragma once

#include <QAccessible>
#include <QList>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>

#include <memory>

namespace vellumine::test {

/// A window of the gallery, shown, and what a screen reader finds in it.
class Scene {
public:
    /// By the name of its file; ends the test program where it cannot be loaded.
    explicit Scene(const char* name);

    [[nodiscard]] QQuickWindow& window() const { return *m_window; }
    /// The control with that objectName.
    [[nodiscard]] QObject& item(const char* name) const;

    /// Everything that can be seen, in the order of the tree.
    [[nodiscard]] QList<QAccessibleInterface*> elements() const;
    /// The one with the role and the name; none where there is none.
    [[nodiscard]] QAccessibleInterface* element(QAccessible::Role role, const QString& name) const;

private:
    QQmlEngine m_engine;
    std::unique_ptr<QObject> m_root;
    QQuickWindow* m_window;
};

} // namespace vellumine::test
