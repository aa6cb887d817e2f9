#include "ui/theme/ProductInfo.h"

#include "core/Product.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

TEST(ProductInfoTest, NamesTheVersionAndTheBuild)
{
    EXPECT_EQ(ProductInfo::versionText(),
        QStringLiteral("Version ") + product::version + QStringLiteral(" (") + product::buildNumber
            + QLatin1Char(')'));
}

TEST(ProductInfoTest, CreditsTheMaker)
{
    EXPECT_TRUE(ProductInfo::creditLine().contains(QStringLiteral("Kestrova")));
    EXPECT_EQ(ProductInfo::makerName(), QStringLiteral("Kestrova"));
}

TEST(ProductInfoTest, NamesTheLicenceAndThoseWhoseWorkItUses)
{
    EXPECT_TRUE(ProductInfo::licenceText().contains(QStringLiteral("General Public License")));
    for (const char* library : { "Qt", "libjpeg-turbo", "libpng", "LibTIFF", "libheif", "libwebp",
             "zimg", "Little CMS", "Exiv2" }) {
        EXPECT_TRUE(ProductInfo::librariesText().contains(QLatin1String(library))) << library;
    }
}

TEST(ProductInfoTest, SaysWhereTheLinksLead)
{
    EXPECT_EQ(ProductInfo::makerHelpText(),
        QStringLiteral("Open ") + QUrl(QString(product::makerUrl)).host());
    EXPECT_EQ(QStringLiteral("https://") + ProductInfo::donationHelpText().mid(5),
        QString(product::donationUrl));
}

TEST(ProductInfoTest, WritesAddressesWithoutScheme)
{
    const auto written = [](const char* address) {
        return ProductInfo::withoutScheme(QUrl(QString::fromLatin1(address)));
    };
    EXPECT_EQ(
        written("https://kestrova.example/donate"), QStringLiteral("kestrova.example/donate"));
    EXPECT_EQ(written("https://kestrova.example/"), QStringLiteral("kestrova.example"));
    EXPECT_EQ(written("https://kestrova.example"), QStringLiteral("kestrova.example"));
    EXPECT_EQ(written("https://kestrova.example/a/"), QStringLiteral("kestrova.example/a/"));
}

TEST(ProductInfoTest, FindsTheLogoAndNoPictureThatIsMissing)
{
    EXPECT_FALSE(ProductInfo().logo().isEmpty());
    EXPECT_TRUE(ProductInfo::resourceUrl(QStringLiteral("/no/such/picture.svg")).isEmpty());
}

} // namespace
} // namespace vellumine
