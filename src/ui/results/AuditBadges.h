#pragma once

#include "core/ProcessingResult.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <qqmlregistration.h>

namespace vellumine {

/// One fact about a conversion: a symbol and what it stands for.
struct AuditBadgeContent {
    Q_GADGET
    QML_VALUE_TYPE(auditBadgeContent)
    Q_PROPERTY(QString systemName MEMBER systemName)
    Q_PROPERTY(QString text MEMBER text)

public:
    QString systemName; ///< of the symbol
    QString text;

    friend bool operator==(const AuditBadgeContent&, const AuditBadgeContent&) = default;
};

/// Dimensions, formats, metadata, colour, and transparency where the source has any.
[[nodiscard]] QList<AuditBadgeContent> auditBadges(const ConversionAudit& audit);

} // namespace vellumine
