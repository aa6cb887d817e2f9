#pragma once

#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "platform/FilePath.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QLocale>
#include <QUrl>

#include <gtest/gtest.h>

#include <filesystem>
#include <string_view>
#include <vector>

namespace vellumine::test {

inline constexpr imaging::PixelLayout rgb8 { imaging::ColorModel::rgb, 8,
    imaging::AlphaInfo::none };

/// Whole conversions in a workplace of their own, whose Trash only remembers.
class Optimize : public testing::Test {
protected:
    void SetUp() override
    {
        QLocale::setDefault(QLocale::c());
        m_environment.moveToTrash = [this](const QUrl& url) -> platform::Result<void> {
            m_trashed.push_back(url);
            std::filesystem::remove(platform::toPath(url));
            return {};
        };
    }

    [[nodiscard]] std::filesystem::path in(std::string_view name) const
    {
        return m_workplace.pictures() / name;
    }

    /// A picture of noise-free colours in a format that is exact.
    std::filesystem::path makeSource(
        std::string_view name = "a.bmp", imaging::Size size = oddSize) const
    {
        writePicture(in(name), gradient(size, rgb8), imaging::UniformType::bmp);
        return in(name);
    }

    Outcome<ProcessingResult> optimize(const std::filesystem::path& path) const
    {
        return ImageOptimizer::optimize(urlOf(path), m_settings, m_environment);
    }

    void expectFailure(const std::filesystem::path& path, std::string_view message) const
    {
        const auto result = optimize(path);
        ASSERT_FALSE(result);
        EXPECT_EQ(localizedDescription(result.error()).toStdString(), message);
        EXPECT_EQ(listing(m_workplace.temporary()), "");
    }

    Workplace m_workplace;
    OptimizerSettings m_settings;
    ConversionEnvironment m_environment = m_workplace.environment();
    std::vector<QUrl> m_trashed;
};

} // namespace vellumine::test
