#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <vector>

namespace vellumine::test {

using imaging::ColorModel;
using imaging::ColorSpace;
using imaging::Image;
using imaging::PixelBuffer;
using imaging::PixelLayout;
using imaging::Size;

namespace {

ColorSpace defaultSpace(ColorModel model)
{
    switch (model) {
    case ColorModel::grey:
        return ColorSpace::grey();
    case ColorModel::rgb:
        return ColorSpace::sRgb();
    case ColorModel::cmyk:
        return ColorSpace::deviceCmyk();
    }
    throw std::logic_error("no such model");
}

/// `value` gives a sample between 0 and 1 for a column and a channel.
template <typename Sample, typename Value>
void fillRow(Sample* row, int width, int channels, const Value& value)
{
    constexpr double largest = std::numeric_limits<Sample>::max();
    for (int x = 0; x < width; ++x) {
        for (int channel = 0; channel < channels; ++channel) {
            *row++ = static_cast<Sample>(std::lround(value(x, channel) * largest));
        }
    }
}

void requireSameShape(const Image& a, const Image& b)
{
    if (a.size() != b.size() || a.layout().channels() != b.layout().channels()) {
        throw std::logic_error("pictures of different shapes cannot be compared");
    }
}

} // namespace

Image makeImage(Size size, PixelLayout layout, const std::function<double(int, int, int)>& sample)
{
    return makeImage(size, layout, defaultSpace(layout.model), sample);
}

Image makeImage(Size size, PixelLayout layout, const ColorSpace& colorSpace,
    const std::function<double(int, int, int)>& sample)
{
    PixelBuffer buffer = PixelBuffer::create(size, layout).value();
    for (int y = 0; y < size.height; ++y) {
        const auto value
            = [&](int x, int channel) { return std::clamp(sample(x, y, channel), 0.0, 1.0); };
        if (layout.bitsPerComponent == 8) {
            fillRow(buffer.row8(y), size.width, layout.channels(), value);
        } else {
            fillRow(buffer.row16(y), size.width, layout.channels(), value);
        }
    }
    return { std::move(buffer), colorSpace };
}

Image gradient(Size size, PixelLayout layout)
{
    const bool alphaFirst = layout.alpha == imaging::AlphaInfo::first
        || layout.alpha == imaging::AlphaInfo::premultipliedFirst
        || layout.alpha == imaging::AlphaInfo::noneSkipFirst;
    const bool anyAlpha = layout.channels() != layout.colorChannels();
    const int alphaChannel = !anyAlpha ? -1 : (alphaFirst ? 0 : layout.channels() - 1);
    return makeImage(size, layout, [&](int x, int y, int channel) {
        const double u = size.width > 1 ? static_cast<double>(x) / (size.width - 1) : 0.0;
        const double v = size.height > 1 ? static_cast<double>(y) / (size.height - 1) : 0.0;
        const double alpha = imaging::hasAlpha(layout.alpha) ? u : 1.0;
        if (channel == alphaChannel) {
            return alpha;
        }
        const int color = channel - (alphaChannel == 0 ? 1 : 0);
        const std::array<double, 4> values { 0.15 + 0.7 * u, 0.9 - 0.6 * v,
            0.2 + 0.3 * u + 0.4 * v * v, 0.1 + 0.2 * u * v };
        const double value = values.at(static_cast<std::size_t>(color));
        return imaging::isPremultiplied(layout.alpha) ? value * alpha : value;
    });
}

Image syntheticPhoto(Size size)
{
    std::uint32_t state = 12345;
    const auto noise = [&state] {
        state = state * 1664525U + 1013904223U;
        return static_cast<double>(state >> 8U) / static_cast<double>(1U << 24U) - 0.5;
    };
    // For each column and channel, and for each row: sines take time, not least under a sanitizer.
    constexpr int channels = 3;
    std::vector<double> across;
    std::vector<double> down;
    for (int x = 0; x < size.width; ++x) {
        const double u = static_cast<double>(x) / size.width;
        for (int channel = 0; channel < channels; ++channel) {
            across.push_back(std::sin(40.0 * u * std::numbers::pi + channel));
        }
    }
    for (int y = 0; y < size.height; ++y) {
        down.push_back(std::cos(23.0 * (static_cast<double>(y) / size.height)));
    }
    return makeImage(
        size, { ColorModel::rgb, 8, imaging::AlphaInfo::none }, [&](int x, int y, int channel) {
            const double u = static_cast<double>(x) / size.width;
            const double v = static_cast<double>(y) / size.height;
            double value = 0.35 + 0.3 * u * (channel == 0 ? 1.0 : 0.6) + 0.2 * v * (channel - 1);
            value += 0.08 * across[static_cast<std::size_t>(channels * x + channel)]
                * down[static_cast<std::size_t>(y)];
            const double dx = u - 0.6;
            const double dy = v - 0.4;
            if (dx * dx + dy * dy < 0.04) {
                value = 0.85 - 0.2 * channel + 0.3 * dx;
            }
            if (u > 0.1 && u < 0.25 && v > 0.55 && v < 0.9) {
                value = 0.1 + 0.25 * channel;
            }
            return value + 0.02 * noise();
        });
}

Image flat(Size size, PixelLayout layout, std::initializer_list<double> samples)
{
    return makeImage(size, layout,
        [&](int /*x*/, int /*y*/, int channel) { return std::data(samples)[channel]; });
}

double sampleAt(const Image& image, int x, int y, int channel)
{
    const auto at = static_cast<std::ptrdiff_t>(x) * image.layout().channels() + channel;
    if (image.layout().bitsPerComponent == 8) {
        return image.row8(y)[at] / 255.0;
    }
    return image.row16(y)[at] / 65535.0;
}

double psnr(const Image& a, const Image& b)
{
    requireSameShape(a, b);
    double sum = 0;
    const int channels = a.layout().channels();
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            for (int c = 0; c < channels; ++c) {
                const double difference = sampleAt(a, x, y, c) - sampleAt(b, x, y, c);
                sum += difference * difference;
            }
        }
    }
    if (sum == 0) {
        return 99.0;
    }
    return 10.0 * std::log10(static_cast<double>(a.width()) * a.height() * channels / sum);
}

double maximumDifference(const Image& a, const Image& b)
{
    requireSameShape(a, b);
    double largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            for (int c = 0; c < a.layout().channels(); ++c) {
                largest = std::max(largest, std::abs(sampleAt(a, x, y, c) - sampleAt(b, x, y, c)));
            }
        }
    }
    return largest;
}

TemporaryFolder::TemporaryFolder()
    : TemporaryFolder(std::filesystem::temp_directory_path())
{
}

TemporaryFolder::TemporaryFolder(const std::filesystem::path& parent)
{
    std::string pattern = (parent / "vellumine-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder could be made");
    }
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

imaging::ByteBuffer readFile(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    if (!stream) {
        throw std::runtime_error("cannot read " + path.string());
    }
    imaging::ByteBuffer bytes(static_cast<std::size_t>(stream.tellg()));
    stream.seekg(0);
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

void writeFile(const std::filesystem::path& path, imaging::ByteSpan bytes)
{
    std::ofstream stream(path, std::ios::binary);
    stream.write(
        reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

void writeFile(const std::filesystem::path& path, std::string_view text)
{
    writeFile(path, std::as_bytes(std::span(text)));
}

} // namespace vellumine::test
