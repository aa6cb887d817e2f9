#pragma once

#include <algorithm>

namespace vellumine::imaging {

/// Width and height in pixels.
struct Size {
    int width = 0;
    int height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle of pixels; the origin is the top left corner.
struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] constexpr Size size() const { return { width, height }; }

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// The rectangle of the given size in the middle of `outer`; odd remainders go to the right and
/// the bottom. `inner` must not be larger than `outer` in either direction.
[[nodiscard]] constexpr Rect centredRect(Size outer, Size inner)
{
    return { (outer.width - inner.width) / 2, (outer.height - inner.height) / 2, inner.width,
        inner.height };
}

/// Whether `rect` is not empty and lies inside a picture of the given size.
[[nodiscard]] constexpr bool contains(Size outer, Rect rect)
{
    return rect.x >= 0 && rect.y >= 0 && rect.width > 0 && rect.height > 0
        && rect.x <= outer.width - rect.width && rect.y <= outer.height - rect.height;
}

} // namespace vellumine::imaging
