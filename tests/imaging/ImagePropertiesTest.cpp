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
    EXPECT_EQ(properties.storedOrientation(), Orientation::TopLeft);
    EXPECT_FALSE(properties.contains(PropertyKey::Exif));
}

TEST(ImageProperties, giveAValueBackAsItsTypeOnly)
{
    ImageProperties properties;
    properties.set(PropertyKey::PixelWidth, std::int64_t { 4000 });
    properties.set(PropertyKey::LossyCompressionQuality, 0.82);
    properties.set(PropertyKey::ProfileName, std::string("Display P3"));
    properties.set(PropertyKey::Png, DictionaryPresent {});
    EXPECT_EQ(properties.integer(PropertyKey::PixelWidth), 4000);
    EXPECT_EQ(properties.number(PropertyKey::PixelWidth), std::nullopt);
    EXPECT_EQ(properties.number(PropertyKey::LossyCompressionQuality), 0.82);
    EXPECT_EQ(properties.text(PropertyKey::ProfileName), "Display P3");
    EXPECT_EQ(properties.text(PropertyKey::Png), std::nullopt);
    EXPECT_TRUE(properties.contains(PropertyKey::Png));
    EXPECT_EQ(properties.integer(PropertyKey::PixelHeight), std::nullopt);
}

TEST(ImageProperties, takeTheLastValueAndForgetARemovedOne)
{
    ImageProperties properties;
    properties.set(PropertyKey::Orientation, std::int64_t { 6 });
    properties.set(PropertyKey::Orientation, std::int64_t { 3 });
    EXPECT_EQ(properties.integer(PropertyKey::Orientation), 3);
    properties.remove(PropertyKey::Orientation);
    properties.remove(PropertyKey::Orientation);
    EXPECT_TRUE(properties.empty());
}

TEST(ImageProperties, haveAKeyForEveryDictionaryOfTheirBlocks)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::RightTop);
    for (const PropertyKey key : { PropertyKey::Exif, PropertyKey::Gps, PropertyKey::Tiff,
             PropertyKey::Iptc, PropertyKey::Xmp }) {
        EXPECT_TRUE(properties.contains(key));
    }
    EXPECT_FALSE(properties.contains(PropertyKey::Orientation));
    EXPECT_EQ(properties.blocks(), cameraBlocks());
}

TEST(ImageProperties, loseTheKeysOfBlocksThatAreReplaced)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::RightTop);
    properties.setBlocks({}, Orientation::TopLeft);
    EXPECT_TRUE(properties.empty());
    EXPECT_TRUE(properties.blocks().empty());
}

TEST(ImageProperties, rememberHowThePictureWasStoredWithoutTheKey)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::RightTop);
    properties.set(PropertyKey::Orientation, std::int64_t { 6 });
    properties.remove(PropertyKey::Orientation);
    EXPECT_EQ(properties.storedOrientation(), Orientation::RightTop);
}

TEST(ImageProperties, copiesShareTheirBlocksButNotTheirKeys)
{
    ImageProperties properties;
    properties.setBlocks(cameraBlocks(), Orientation::TopLeft);
    ImageProperties copy = properties;
    EXPECT_EQ(&copy.blocks(), &properties.blocks());
    copy.remove(PropertyKey::Gps);
    EXPECT_TRUE(properties.contains(PropertyKey::Gps));
}

} // namespace
} // namespace vellumine::imaging
