#pragma once

#include <QLocale>
#include <QTranslator>

namespace vellumine {

/// The texts of the program and of Qt in the languages of a locale, for as long as it lives: in the
/// first one that there is a translation to, unless English is preferred. What is not translated
/// stays English.
class Translations {
public:
    /// Needs the application object, and comes before whatever shows a text.
    explicit Translations(const QLocale& locale = QLocale());

    /// Whether there is a translation of the program.
    [[nodiscard]] bool areLoaded() const { return !m_ofProgram.isEmpty(); }

private:
    QTranslator m_ofQt;
    QTranslator m_ofProgram;
};

} // namespace vellumine
