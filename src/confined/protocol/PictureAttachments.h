#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/ImageProperties.h"
#include "imaging/Orientation.h"
#include "imaging/colour/ColorSpace.h"

namespace vellumine::confined {

/// What goes with the pixels of a decoded picture.
struct PictureAttachments {
    imaging::ColorSpace colorSpace;
    imaging::Orientation orientation = imaging::Orientation::topLeft;
    imaging::ImageProperties properties;
};

[[nodiscard]] imaging::ByteBuffer serialised(const PictureAttachments& attachments);

/// Fails with Malformed for anything that serialised() does not give. What profiles and blocks hold
/// is not looked into.
[[nodiscard]] imaging::Result<PictureAttachments> parseAttachments(imaging::ByteSpan bytes);

} // namespace vellumine::confined
