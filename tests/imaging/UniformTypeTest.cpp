#include "imaging/UniformType.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {
namespace {

TEST(UniformType, preferredExtensionsAreTheRegisteredOnes)
{
    EXPECT_EQ(preferredExtension(UniformType::jpeg), "jpeg");
    EXPECT_EQ(preferredExtension(UniformType::png), "png");
    EXPECT_EQ(preferredExtension(UniformType::heic), "heic");
    EXPECT_EQ(preferredExtension(UniformType::heif), "heif");
    EXPECT_EQ(preferredExtension(UniformType::tiff), "tiff");
    EXPECT_EQ(preferredExtension(UniformType::gif), "gif");
    EXPECT_EQ(preferredExtension(UniformType::bmp), "bmp");
    EXPECT_EQ(preferredExtension(UniformType::webp), "webp");
}

TEST(UniformType, identifiersAreTheRegisteredOnes)
{
    EXPECT_EQ(identifier(UniformType::jpeg), "public.jpeg");
    EXPECT_EQ(identifier(UniformType::gif), "com.compuserve.gif");
    EXPECT_EQ(identifier(UniformType::webp), "org.webmproject.webp");
}

} // namespace
} // namespace vellumine::imaging
