#include "stats/StatsFolder.h"

#include "core/Product.h"

#include <QDir>

namespace vellumine {

QString statsFolder()
{
    return statsFolder(qEnvironmentVariable("XDG_DATA_HOME"), QDir::homePath());
}

QString statsFolder(const QString& dataHome, const QString& home)
{
    const QString preferred
        = QDir::isAbsolutePath(dataHome) ? dataHome : home + QStringLiteral("/.local/share");
    const QString support = QDir().mkpath(preferred)
        ? preferred
        : home + QStringLiteral("/Library/Application Support");
    return QDir(support).filePath(QString(product::name));
}

} // namespace vellumine
