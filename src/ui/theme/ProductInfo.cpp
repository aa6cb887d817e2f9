#include "ui/theme/ProductInfo.h"

#include "core/Product.h"
#include "ui/settings/SettingsText.h"

#include <QFile>

namespace vellumine {

ProductInfo::ProductInfo(QObject* parent)
    : QObject(parent)
    , m_logo(
          resourceUrl(QStringLiteral("/qt-project.org/imports/Vellumine/images/KestrovaLogo.svg")))
{
}

QString ProductInfo::name()
{
    return product::name;
}

QString ProductInfo::versionText()
{
    return settings_text::appVersion(product::version, product::buildNumber);
}

QString ProductInfo::licenceText()
{
    return tr("Free software under the GNU General Public License, version 3 or later");
}

QString ProductInfo::librariesText()
{
    return tr("With thanks to the makers of %1")
        .arg(QStringLiteral("Qt, libjpeg-turbo, libpng, GIFLIB, libimagequant, LibTIFF, libheif, "
                            "libwebp, libdeflate, ISA-L, zlib, zimg, Little CMS, Exiv2, "
                            "libplist, libseccomp, GLib"));
}

QString ProductInfo::confinementText() const
{
    return m_confinementText ? m_confinementText() : QString();
}

QString ProductInfo::makerName()
{
    return product::organisation;
}

QString ProductInfo::creditLine()
{
    return tr("Made with care by %1").arg(makerName());
}

QUrl ProductInfo::makerUrl()
{
    return QUrl(QString(product::makerUrl));
}

QString ProductInfo::makerHelpText()
{
    return tr("Open %1").arg(makerUrl().host());
}

QUrl ProductInfo::donationUrl()
{
    return QUrl(QString(product::donationUrl));
}

QString ProductInfo::donationHelpText()
{
    return tr("Open %1").arg(withoutScheme(donationUrl()));
}

QUrl ProductInfo::resourceUrl(const QString& path)
{
    QUrl url;
    if (QFile::exists(QLatin1Char(':') + path)) {
        url.setScheme(QStringLiteral("qrc"));
        url.setPath(path);
    }
    return url;
}

QString ProductInfo::withoutScheme(const QUrl& url)
{
    QString text = url.toDisplayString(QUrl::RemoveScheme | QUrl::RemoveUserInfo);
    if (text.startsWith(QStringLiteral("//"))) {
        text.remove(0, 2);
    }
    if (text.count(QLatin1Char('/')) == 1 && text.endsWith(QLatin1Char('/'))) {
        text.chop(1);
    }
    return text;
}

} // namespace vellumine
