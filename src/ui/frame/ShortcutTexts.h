#pragma once

#include <QKeySequence>
#include <QObject>
#include <QQmlEngine>

namespace vellumine {

/// The keys of the windows, as a Shortcut takes them, and those of the application menu as it
/// writes them in the user's language.
class ShortcutTexts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString preferences READ preferences CONSTANT)
    Q_PROPERTY(QString quit READ quit CONSTANT)
    Q_PROPERTY(QKeySequence preferencesKeys READ preferencesKeys CONSTANT)
    Q_PROPERTY(QKeySequence quitKeys READ quitKeys CONSTANT)
    Q_PROPERTY(QKeySequence openKeys READ openKeys CONSTANT)
    Q_PROPERTY(QKeySequence pasteKeys READ pasteKeys CONSTANT)
    Q_PROPERTY(QKeySequence closeKeys READ closeKeys CONSTANT)
    Q_PROPERTY(QKeySequence cancelKeys READ cancelKeys CONSTANT)

public:
    explicit ShortcutTexts(QObject* parent = nullptr)
        : QObject(parent)
    {
    }

    [[nodiscard]] static QKeySequence preferencesKeys() { return { Qt::CTRL | Qt::Key_Comma }; }
    [[nodiscard]] static QKeySequence quitKeys() { return { Qt::CTRL | Qt::Key_Q }; }
    [[nodiscard]] static QKeySequence openKeys() { return { Qt::CTRL | Qt::Key_O }; }
    [[nodiscard]] static QKeySequence pasteKeys() { return { Qt::CTRL | Qt::Key_V }; }
    [[nodiscard]] static QKeySequence closeKeys() { return { Qt::CTRL | Qt::Key_W }; }
    [[nodiscard]] static QKeySequence cancelKeys() { return { Qt::Key_Escape }; }
    [[nodiscard]] static QString preferences()
    {
        return preferencesKeys().toString(QKeySequence::NativeText);
    }
    [[nodiscard]] static QString quit() { return quitKeys().toString(QKeySequence::NativeText); }

    /// What menus write, in the words that are the same in every language.
    [[nodiscard]] Q_INVOKABLE static QString portable(const QString& text)
    {
        return QKeySequence::fromString(text, QKeySequence::NativeText)
            .toString(QKeySequence::PortableText);
    }
};

} // namespace vellumine
