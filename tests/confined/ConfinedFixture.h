#pragma once

#include "confined/client/ConfinedDecoders.h"
#include "imaging/Image.h"
#include "imaging/UniformType.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellumine::confined {

/// Whether size, layout, colours and every sample are the same.
[[nodiscard]] bool areEqual(const imaging::Image& a, const imaging::Image& b);

/// Pictures in a folder of a test's own, and the decoders that are beside the program.
class Confined : public testing::Test {
protected:
    /// Writes a photograph of that type. The one that was there before goes.
    [[nodiscard]] std::filesystem::path picture(
        imaging::UniformType type, imaging::Size size = test::oddSize) const;

    test::TemporaryFolder m_folder;
    ConfinedDecoders m_decoders { VELLUMINE_DECODER };
};

} // namespace vellumine::confined
