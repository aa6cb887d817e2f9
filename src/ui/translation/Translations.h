#pragma once

#include <QLocale>
#include <QTranslator>

namespace vellumine {

/// The texts of the program and of Qt in the user's languages, for as long as it lives: in the
/// first one that there is a translation to, unless English is preferred. What is not translated
/// stays English.
class Translations {
public:
    /// Takes names of languages ("de", "de-AT"), the preferred one first. Needs the application
    /// object, and comes before whatever shows a text.
    explicit Translations(const QStringList& languages = QLocale().uiLanguages());

    /// Whether there is a translation of the program.
    [[nodiscard]] bool areLoaded() const { return !m_ofProgram.isEmpty(); }

private:
    QTranslator m_ofQt;
    QTranslator m_ofProgram;
};

} // namespace vellumine
