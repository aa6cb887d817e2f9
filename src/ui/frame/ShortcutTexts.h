#pragma once

#include <QKeySequence>
#include <QObject>
#include <QQmlEngine>

namespace vellumine {

/// The keys of the windows in the words that are the same in every language, in which a Shortcut
/// reads them, and those of the application menu as it writes them for the user.
class ShortcutTexts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString preferences READ preferences CONSTANT)
    Q_PROPERTY(QString quit READ quit CONSTANT)
    Q_PROPERTY(QString preferencesKeys READ preferencesKeys CONSTANT)
    Q_PROPERTY(QString quitKeys READ quitKeys CONSTANT)
    Q_PROPERTY(QString openKeys READ openKeys CONSTANT)
    Q_PROPERTY(QString pasteKeys READ pasteKeys CONSTANT)
    Q_PROPERTY(QString closeKeys READ closeKeys CONSTANT)
    Q_PROPERTY(QString cancelKeys READ cancelKeys CONSTANT)

public:
    explicit ShortcutTexts(QObject* parent = nullptr)
        : QObject(parent)
    {
    }

    [[nodiscard]] static QString preferencesKeys() { return QStringLiteral("Ctrl+,"); }
    [[nodiscard]] static QString quitKeys() { return QStringLiteral("Ctrl+Q"); }
    [[nodiscard]] static QString openKeys() { return QStringLiteral("Ctrl+O"); }
    [[nodiscard]] static QString pasteKeys() { return QStringLiteral("Ctrl+V"); }
    [[nodiscard]] static QString closeKeys() { return QStringLiteral("Ctrl+W"); }
    [[nodiscard]] static QString cancelKeys() { return QStringLiteral("Esc"); }

    [[nodiscard]] static QString preferences() { return native(preferencesKeys()); }
    [[nodiscard]] static QString quit() { return native(quitKeys()); }

    /// What menus write, in the words that are the same in every language.
    [[nodiscard]] Q_INVOKABLE static QString portable(const QString& text)
    {
        return QKeySequence::fromString(text, QKeySequence::NativeText)
            .toString(QKeySequence::PortableText);
    }

private:
    [[nodiscard]] static QString native(const QString& keys)
    {
        return QKeySequence::fromString(keys, QKeySequence::PortableText)
            .toString(QKeySequence::NativeText);
    }
};

} // namespace vellumine
