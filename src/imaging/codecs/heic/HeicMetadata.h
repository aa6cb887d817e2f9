#pragma once

#include "imaging/codecs/heic/HeicHandles.h"
#include "imaging/metadata/MetadataBlocks.h"

namespace vellumine::imaging::heic {

/// The picture's EXIF and XMP items. One that is damaged is left out.
[[nodiscard]] MetadataBlocks readMetadata(const heif_image_handle* picture);

/// Adds EXIF and XMP to a picture that has been encoded; IPTC has no place in the format. Fails
/// with EncodingFailed.
Result<void> addMetadata(
    heif_context* context, const heif_image_handle* picture, const MetadataBlocks& blocks);

} // namespace vellumine::imaging::heic
