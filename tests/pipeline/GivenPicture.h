#pragma once

#include "imaging/DeferredPixels.h"
#include "imaging/Image.h"
#include "imaging/Orientation.h"
#include "imaging/SourceDecoder.h"
#include "pipeline/ConversionEnvironment.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <utility>

namespace vellumine::test {

/// Decodes to a picture of the test's own.
class GivenPicture final : public imaging::SourceDecoder {
public:
    explicit GivenPicture(imaging::Image image)
        : m_image(std::move(image))
        , m_header { m_image.size(), m_image.layout() }
    {
    }

    [[nodiscard]] imaging::UniformType type() const override { return imaging::UniformType::bmp; }
    [[nodiscard]] const imaging::ImageHeader& header() const override { return m_header; }
    imaging::Result<imaging::SourcePicture> decode(const imaging::PictureWish& /*wish*/) override
    {
        return imaging::SourcePicture { m_image, false, imaging::Orientation::topLeft, {} };
    }

private:
    imaging::Image m_image;
    imaging::ImageHeader m_header;
};

/// Opens the file at the path as that picture, and others as they are.
[[nodiscard]] inline OpenImage openAs(const std::filesystem::path& path, imaging::Image image)
{
    return [path, image = std::move(image)](const std::filesystem::path& file,
               const imaging::Limits& limits,
               const std::stop_token& interruption) -> imaging::Result<imaging::ImageSource> {
        return file == path ? imaging::ImageSource::create(std::make_unique<GivenPicture>(image))
                            : openHere(file, limits, interruption);
    };
}

/// Says when its pixels are needed, and gives those of a picture then.
class WatchedPixels final : public imaging::DeferredPixels {
public:
    WatchedPixels(imaging::Image image, std::function<void()> needed)
        : m_image(std::move(image))
        , m_needed(std::move(needed))
    {
    }

    [[nodiscard]] imaging::Result<imaging::Image> rows(imaging::Rect part) const override
    {
        m_needed();
        return m_image.cropped(part);
    }
    [[nodiscard]] imaging::Result<imaging::Image> drawn(
        const imaging::Drawing& /*drawing*/) const override
    {
        return imaging::failure(imaging::Error::Kind::unsupported, "never drawn");
    }

private:
    imaging::Image m_image;
    std::function<void()> m_needed;
};

/// The picture with pixels that are laid out when somebody needs them, which `needed` hears of.
[[nodiscard]] inline imaging::Image watched(
    const imaging::Image& image, std::function<void()> needed)
{
    return { image.size(), image.layout(), image.colorSpace(),
        std::make_shared<WatchedPixels>(image, std::move(needed)), imaging::Orientation::topLeft };
}

/// Pixels that were lost after they were decoded, as when a helper dies over them.
class LostPixels final : public imaging::DeferredPixels {
public:
    [[nodiscard]] imaging::Result<imaging::Image> rows(imaging::Rect /*part*/) const override
    {
        return imaging::failure(imaging::Error::Kind::io, "gone");
    }
    [[nodiscard]] imaging::Result<imaging::Image> drawn(
        const imaging::Drawing& /*drawing*/) const override
    {
        return imaging::failure(imaging::Error::Kind::io, "gone");
    }
};

/// A picture like that one, of which no pixel can be had.
[[nodiscard]] inline imaging::Image lost(const imaging::Image& image)
{
    return { image.size(), image.layout(), image.colorSpace(), std::make_shared<LostPixels>(),
        imaging::Orientation::topLeft };
}

} // namespace vellumine::test
