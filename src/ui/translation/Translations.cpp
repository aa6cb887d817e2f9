#include "ui/translation/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace vellumine {

Translations::Translations(const QLocale& locale)
{
    const auto install
        = [&locale](QTranslator& translator, const char* name, const QString& folder) {
              if (translator.load(locale, QString::fromLatin1(name), QStringLiteral("_"), folder)) {
                  QCoreApplication::installTranslator(&translator);
              }
          };
    install(m_ofQt, "qt", QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(m_ofProgram, "vellumine", QStringLiteral(":/translations"));
}

} // namespace vellumine
