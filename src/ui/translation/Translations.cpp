#include "ui/translation/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QList>

#include <algorithm>

namespace vellumine {

namespace {

/// The languages that the user prefers to English, in which all texts are written.
QList<QLocale> beforeEnglish(const QStringList& names)
{
    QList<QLocale> languages;
    for (const QString& name : names) {
        const QLocale language(name);
        if (language.language() == QLocale::English || language.language() == QLocale::C) {
            break;
        }
        languages.append(language);
    }
    return languages;
}

void install(QTranslator& translator, const QList<QLocale>& languages, const QString& name,
    const QString& folder)
{
    const bool isLoaded
        = std::any_of(languages.begin(), languages.end(), [&](const QLocale& language) {
              return translator.load(language, name, QStringLiteral("_"), folder);
          });
    if (isLoaded) {
        QCoreApplication::installTranslator(&translator);
    }
}

} // namespace

Translations::Translations(const QStringList& languages)
{
    const QList<QLocale> preferred = beforeEnglish(languages);
    install(m_ofQt, preferred, QStringLiteral("qt"),
        QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(m_ofProgram, preferred, QStringLiteral("vellumine"), QStringLiteral(":/translations"));
}

} // namespace vellumine
