#include "imaging/UniformType.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {
namespace {

TEST(UniformType, preferredExtensionsAreTheRegisteredOnes)
{
    EXPECT_EQ(preferredExtension(UniformType::Jpeg), "jpeg");
    EXPECT_EQ(preferredExtension(UniformType::Png), "png");
    EXPECT_EQ(preferredExtension(UniformType::Heic), "heic");
    EXPECT_EQ(preferredExtension(UniformType::Heif), "heif");
    EXPECT_EQ(preferredExtension(UniformType::Tiff), "tiff");
    EXPECT_EQ(preferredExtension(UniformType::Gif), "gif");
    EXPECT_EQ(preferredExtension(UniformType::Bmp), "bmp");
    EXPECT_EQ(preferredExtension(UniformType::WebP), "webp");
}

TEST(UniformType, identifiersAreTheRegisteredOnes)
{
    EXPECT_EQ(identifier(UniformType::Jpeg), "public.jpeg");
    EXPECT_EQ(identifier(UniformType::Gif), "com.compuserve.gif");
    EXPECT_EQ(identifier(UniformType::WebP), "org.webmproject.webp");
}

} // namespace
} // namespace vellumine::imaging
