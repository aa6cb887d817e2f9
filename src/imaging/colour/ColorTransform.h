#pragma once

#include "imaging/Error.h"
#include "imaging/PixelLayout.h"
#include "imaging/colour/ColorSpace.h"

#include <cstdint>
#include <memory>

namespace vellumine::imaging {

/// Turns rows of straight or opaque colour into 8-bit RGB of another space. Built for one draw; to
/// be used by one thread at a time.
class ColorTransform {
public:
    /// From interleaved samples of `from`'s model without alpha, 8 or 16 bits deep, to `to`, which
    /// is an RGB space. Where the numbers mean the same in both, they are only rearranged. Fails
    /// with Unsupported when the two cannot be joined.
    static Result<ColorTransform> create(
        const ColorSpace& from, int bitsPerComponent, const ColorSpace& to);

    ColorTransform(ColorTransform&& other) noexcept;
    ColorTransform& operator=(ColorTransform&& other) noexcept;
    ~ColorTransform();

    /// Whether the numbers of RGB pixels stay as they are.
    [[nodiscard]] bool isIdentity() const;

    /// Converts `count` pixels. `rgba` gets four bytes a pixel of which the last is left alone.
    void apply(const void* samples, std::uint8_t* rgba, int count) const;

private:
    struct State;
    explicit ColorTransform(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// Whether pictures of the two RGB spaces have the same numbers for the same colours.
[[nodiscard]] bool sameNumbers(const ColorSpace& a, const ColorSpace& b);

} // namespace vellumine::imaging
