#pragma once

#include "imaging/Image.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace vellumine::test {

/// The odd size that round trips use: no multiple of any block size.
inline constexpr imaging::Size oddSize { 47, 33 };

/// A picture with the given samples, 0 to 1 each (scaled to the layout's depth). `sample` is called
/// with x, y and the channel in memory order.
[[nodiscard]] imaging::Image makeImage(imaging::Size size, imaging::PixelLayout layout,
    const std::function<double(int, int, int)>& sample);

/// The same with a colour space of the caller's.
[[nodiscard]] imaging::Image makeImage(imaging::Size size, imaging::PixelLayout layout,
    const imaging::ColorSpace& colorSpace, const std::function<double(int, int, int)>& sample);

/// Smooth colour without symmetry: every flip and turn of it is a different picture. Alpha runs
/// from transparent at the left to opaque at the right; premultiplied layouts are valid.
[[nodiscard]] imaging::Image gradient(imaging::Size size, imaging::PixelLayout layout);

/// A photograph's stand-in: gradients, edges, texture and a little noise from a fixed seed.
[[nodiscard]] imaging::Image syntheticPhoto(imaging::Size size);

/// One colour everywhere; `samples` in memory order, 0 to 1.
[[nodiscard]] imaging::Image flat(
    imaging::Size size, imaging::PixelLayout layout, std::initializer_list<double> samples);

/// Sample of the picture as 0 to 1.
[[nodiscard]] double sampleAt(const imaging::Image& image, int x, int y, int channel);

/// Peak signal-to-noise ratio over all channels in decibels, 99 for equal pictures. The sizes and
/// the channel counts must be equal (a fatal test failure otherwise); depths may differ.
[[nodiscard]] double psnr(const imaging::Image& a, const imaging::Image& b);

/// Largest difference of two samples, 0 to 1.
[[nodiscard]] double maximumDifference(const imaging::Image& a, const imaging::Image& b);

/// A folder of its own for one test, removed with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    explicit TemporaryFolder(const std::filesystem::path& parent);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const
    {
        return m_path / name;
    }

private:
    std::filesystem::path m_path;
};

[[nodiscard]] imaging::ByteBuffer readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, imaging::ByteSpan bytes);
void writeFile(const std::filesystem::path& path, std::string_view text);

} // namespace vellumine::test
