#include "imaging/ImageProperties.h"

#include "imaging/metadata/ExifBuilder.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {
namespace {

MetadataBlocks cameraBlocks()
{
    return { .exif = test::cameraExif(),
        .xmp = test::xmpPacket(R"(xmp:Rating="3")"),
        .iptc = test::captionIptc("A caption") };
}

TEST(ImageProperties, areEmptyAtFirst)
{
    const ImageProperties properties;
    EXPECT_TRUE(properties.empty());
    EXPECT_TRUE(properties.blocks().empty());
    EXPECT_EQ(properties.storedOrientation(), Orientation::topLeft);
    EXPECT_FALSE(properties.contains(PropertyKey::exif));
}

TEST(ImageProperties, giveAValueBackAsItsTypeOnly)
{
    ImageProperties properties;
    properties.set(PropertyKey::pixelWidth, std::int64_t { 4000 });
    properties.set(PropertyKey::lossyCompressionQuality, 0.82);
    properties.set(PropertyKey::profileName, std::string("Display P3"));
    properties.set(PropertyKey::png, DictionaryPresent {});
    EXPECT_EQ(properties.integer(PropertyKey::pixelWidth), 4000);
    EXPECT_EQ(properties.number(PropertyKey::pixelWidth), std::nullopt);
    EXPECT_EQ(properties.number(PropertyKey::lossyCompressionQuality), 0.82);
    EXPECT_EQ(properties.text(PropertyKey::profileName), "Display P3");
    EXPECT_EQ(properties.text(PropertyKey::png), std::nullopt);
    EXPECT_TRUE(properties.contains(PropertyKey::png));
    EXPECT_EQ(properties.integer(PropertyKey::pixelHeight), std::nullopt);
}

TEST(ImageProperties, takeTheLastValueAndForgetARemovedOne)
{
    ImageProperties properties;
    properties.set(PropertyKey::orientation, std::int64_t { 6 });
    properties.set(PropertyKey::orientation, std::int64_t { 3 });
    EXPECT_EQ(properties.integer(PropertyKey::orientation), 3);
    properties.remove(PropertyKey::orientation);
    properties.remove(PropertyKey::orientation);
    EXPECT_TRUE(properties.empty());
}

TEST(ImageProperties, haveAKeyForEveryDictionaryOfTheirBlocks)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::rightTop);
    for (const PropertyKey key : { PropertyKey::exif, PropertyKey::gps, PropertyKey::tiff,
             PropertyKey::iptc, PropertyKey::xmp }) {
        EXPECT_TRUE(properties.contains(key));
    }
    EXPECT_FALSE(properties.contains(PropertyKey::orientation));
    EXPECT_EQ(properties.blocks(), cameraBlocks());
}

TEST(ImageProperties, loseTheKeysOfBlocksThatAreReplaced)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::rightTop);
    properties.setBlocks({}, Orientation::topLeft);
    EXPECT_TRUE(properties.empty());
    EXPECT_TRUE(properties.blocks().empty());
}

TEST(ImageProperties, rememberHowThePictureWasStoredWithoutTheKey)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::rightTop);
    properties.set(PropertyKey::orientation, std::int64_t { 6 });
    properties.remove(PropertyKey::orientation);
    EXPECT_EQ(properties.storedOrientation(), Orientation::rightTop);
}

TEST(ImageProperties, copiesShareTheirBlocksButNotTheirKeys)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::topLeft);
    ImageProperties copy = properties;
    EXPECT_EQ(&copy.blocks(), &properties.blocks());
    copy.remove(PropertyKey::gps);
    EXPECT_TRUE(properties.contains(PropertyKey::gps));
}

} // namespace
} // namespace vellumine::imaging
