#include "app/ConfinementSentence.h"

#include "support/QtPrinters.h"

#include <QLocale>

#include <gtest/gtest.h>

namespace vellumine {
namespace {

TEST(ConfinementSentence, namesWhatIsInForceAsTheCommandLineDoes)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    using confined::Confinement;
    for (const auto& confinement : { std::optional<Confinement>(), std::optional(Confinement {}),
             std::optional(Confinement { .memoryLimit = true }),
             std::optional(Confinement { .noNewPrivileges = true, .timeLimit = true }) }) {
        EXPECT_EQ(
            confinementSentence(confinement).toStdString(), confined::confinementText(confinement));
    }
    EXPECT_EQ(confinementSentence(Confinement { true, 7, true, true, true }),
        QStringLiteral(
            "Pictures are decoded in a process of their own, confined by a system call "
            "filter, Landlock 7, no new privileges, a memory limit, and a processor time "
            "limit."));
    QLocale::setDefault(QLocale::c());
}

} // namespace
} // namespace vellumine
