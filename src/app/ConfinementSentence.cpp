#include "app/ConfinementSentence.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

namespace vellumine {

namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(ConfinementSentence)
};

} // namespace

QString confinementSentence(const std::optional<confined::Confinement>& confinement)
{
    if (!confinement) {
        return Translated::tr(
            "Pictures are decoded in the program itself: the decoder is missing.");
    }
    QStringList inForce;
    if (confinement->systemCallFilter) {
        inForce.append(Translated::tr("a system call filter"));
    }
    if (confinement->landlockVersion > 0) {
        inForce.append(Translated::tr("Landlock %1").arg(confinement->landlockVersion));
    }
    if (confinement->noNewPrivileges) {
        inForce.append(Translated::tr("no new privileges"));
    }
    if (confinement->memoryLimit) {
        inForce.append(Translated::tr("a memory limit"));
    }
    if (confinement->timeLimit) {
        inForce.append(Translated::tr("a processor time limit"));
    }
    return inForce.isEmpty()
        ? Translated::tr("Pictures are decoded in a process of their own.")
        : Translated::tr("Pictures are decoded in a process of their own, confined by %1.")
              .arg(QLocale().createSeparatedList(inForce));
}

} // namespace vellumine
