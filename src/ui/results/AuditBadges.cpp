#include "ui/results/AuditBadges.h"

#include "ui/results/ResultTexts.h"
#include "ui/settings/SettingsText.h"

#include <QCoreApplication>

namespace vellumine {
namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(ConversionAuditBadges)
};

AuditBadgeContent metadataBadge(const ConversionAudit& audit)
{
    return audit.metadataRemoved
        ? AuditBadgeContent { QStringLiteral("trash"), Translated::tr("Metadata removed") }
        : AuditBadgeContent { QStringLiteral("doc.badge.gearshape"),
              Translated::tr("Metadata kept") };
}

AuditBadgeContent colourBadge(const ConversionAudit& audit)
{
    if (audit.colorOptimized) {
        return { QStringLiteral("paintpalette"), Translated::tr("sRGB") };
    }
    return { QStringLiteral("circle.hexagongrid"),
        audit.colorManagementRemoved ? Translated::tr("Profile removed")
                                     : Translated::tr("Color kept") };
}

} // namespace

QList<AuditBadgeContent> auditBadges(const ConversionAudit& audit)
{
    QList<AuditBadgeContent> badges {
        { QStringLiteral("aspectratio"), results::dimensions(audit) },
        { QStringLiteral("doc.on.doc"),
            settings_text::formatName(audit.inputFormat) + QStringLiteral(" -> ")
                + settings_text::formatName(audit.outputFormat) },
        metadataBadge(audit),
        colourBadge(audit),
    };
    if (audit.sourceHasAlpha) {
        badges.append({ QStringLiteral("checkerboard.rectangle"),
            audit.outputSupportsAlpha ? Translated::tr("Transparency preserved")
                                      : Translated::tr("Transparency removed") });
    }
    return badges;
}

} // namespace vellumine
