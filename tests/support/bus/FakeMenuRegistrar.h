#pragma once

#include <QObject>
#include <QString>

namespace vellumine::test {

/// With what windows register their menus, as far as it is asked whether it is there.
class FakeMenuRegistrar : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.AppMenu.Registrar")

public:
    static QString name() { return QStringLiteral("com.canonical.AppMenu.Registrar"); }
    static QString path() { return QStringLiteral("/com/canonical/AppMenu/Registrar"); }

    /// The owner of the window's menu: none has one.
    // NOLINTNEXTLINE(*-identifier-naming, *-member-functions-to-static): a slot, by the bus's name
    Q_SLOT QString GetMenuForWindow(uint /*window*/) { return {}; }
};

} // namespace vellumine::test
