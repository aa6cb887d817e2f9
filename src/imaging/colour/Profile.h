#pragma once

#include "imaging/Bytes.h"
#include "imaging/PixelLayout.h"
#include "imaging/colour/ColorSpace.h"

#include <lcms2.h>

#include <memory>
#include <optional>
#include <type_traits>

/// Little CMS handles that close themselves, and the profiles that the service makes. Each
/// operation has a context of its own, so that nothing is shared between threads and no error is
/// printed.
namespace vellumine::imaging::colour {

struct ContextDeleter {
    void operator()(cmsContext context) const { cmsDeleteContext(context); }
};
using Context = std::unique_ptr<std::remove_pointer_t<cmsContext>, ContextDeleter>;

struct ProfileDeleter {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileDeleter>;

struct TransformDeleter {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, TransformDeleter>;

/// A context that keeps silent about errors.
[[nodiscard]] Context makeContext();

/// Null when the bytes are no profile.
[[nodiscard]] Profile openProfile(cmsContext context, ByteSpan icc);

/// sRGB, with parametric curves.
[[nodiscard]] Profile makeSRgbProfile(cmsContext context);

/// Adobe RGB (1998), by the numbers of its specification.
[[nodiscard]] Profile makeAdobeRgbProfile(cmsContext context);

/// Grey with the sRGB curve.
[[nodiscard]] Profile makeGreyProfile(cmsContext context);

/// RGB or grey from numbers; null when they are degenerate.
[[nodiscard]] Profile makeProfile(
    cmsContext context, const Primaries& primaries, TransferCurve curve, ColorModel model);

/// The profile's bytes; the same input gives the same bytes at any time. Empty on failure.
[[nodiscard]] ByteBuffer serialised(cmsHPROFILE profile);

/// Relative colorimetric, or perceptual for a profile that only has tables.
[[nodiscard]] cmsUInt32Number renderingIntent(cmsHPROFILE profile);

/// The model that the profile's numbers are of; none for anything but grey, RGB and CMYK.
[[nodiscard]] std::optional<ColorModel> modelOf(cmsHPROFILE profile);

} // namespace vellumine::imaging::colour
