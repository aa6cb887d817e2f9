#pragma once

#include <QKeySequence>
#include <QObject>
#include <QQmlEngine>

namespace vellumine {

/// The keys of the application menu, as a Shortcut takes them and as the menu writes them in the
/// user's language.
class ShortcutTexts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString preferences READ preferences CONSTANT)
    Q_PROPERTY(QString quit READ quit CONSTANT)
    Q_PROPERTY(QKeySequence preferencesKeys READ preferencesKeys CONSTANT)
    Q_PROPERTY(QKeySequence quitKeys READ quitKeys CONSTANT)

public:
    explicit ShortcutTexts(QObject* parent = nullptr)
        : QObject(parent)
    {
    }

    [[nodiscard]] static QKeySequence preferencesKeys() { return { Qt::CTRL | Qt::Key_Comma }; }
    [[nodiscard]] static QKeySequence quitKeys() { return { Qt::CTRL | Qt::Key_Q }; }
    [[nodiscard]] static QString preferences()
    {
        return preferencesKeys().toString(QKeySequence::NativeText);
    }
    [[nodiscard]] static QString quit() { return quitKeys().toString(QKeySequence::NativeText); }
};

} // namespace vellumine
