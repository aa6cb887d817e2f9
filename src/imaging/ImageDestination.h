#pragma once

#include "imaging/Error.h"
#include "imaging/FileDescriptor.h"
#include "imaging/Image.h"
#include "imaging/ImageProperties.h"
#include "imaging/UniformType.h"
#include "imaging/codecs/Codec.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace vellumine::imaging {

/// A picture file that is being written. The file exists and is empty from create() on; after a
/// successful finalize() it is complete and synced to disk. A destination that is dropped without
/// one leaves what it has; removing the file is the caller's.
class ImageDestination {
public:
    /// The types that can be written: all but WebP.
    [[nodiscard]] static std::vector<UniformType> encodableTypes();

    /// Whether pictures of the type are encoded some rows at a time, and need not be here as a
    /// whole.
    [[nodiscard]] static bool encodesInPieces(UniformType type);

    /// Creates the file; one that exists is never written over. Fails with Unsupported for a type
    /// that is not encodable and with Io, the system's text as detail.
    static Result<ImageDestination> create(const std::filesystem::path& path, UniformType type);
    /// The same for an empty file that is open for writing.
    static Result<ImageDestination> create(FileDescriptor file, UniformType type);

    void setProfilePolicy(ProfilePolicy policy) { m_profile = policy; }
    void setEffort(Effort effort) { m_effort = effort; }
    /// The properties that the picture is to have: the metadata dictionaries whose keys are
    /// present (the texts of one that a format has for itself, in a file of that format), the
    /// Resolution and the LossyCompressionQuality. An orientation is never written: the picture is
    /// upright, whatever its properties say. A CMYK picture becomes sRGB where the type knows no
    /// CMYK. Only one picture is written, the one that was added last.
    void addImage(Image image, ImageProperties properties);
    /// Has finalize() find out what a reader will see in this part of the picture.
    void setPartOfInterest(Rect part) { m_part = part; }
    /// Encodes and writes, once. Fails with EncodingFailed when no picture was added, with
    /// Truncated when pixels of a picture without rows are lost meanwhile, with what the encoder
    /// fails with, and with Io when the disk does.
    Result<void> finalize();
    /// The part of interest in the written file; none where only a reader of the file can tell.
    [[nodiscard]] const std::optional<Image>& writtenPart() const { return m_writtenPart; }

private:
    [[nodiscard]] std::optional<Resolution> resolution() const;
    [[nodiscard]] MetadataBlocks travellingBlocks(const Image& image) const;
    [[nodiscard]] MetadataBlocks metadataFor(const Image& image) const;
    [[nodiscard]] FileTexts texts() const;

    ImageDestination(FileDescriptor file, UniformType type);

    FileDescriptor m_file;
    UniformType m_type;
    ProfilePolicy m_profile = ProfilePolicy::embed;
    Effort m_effort = Effort::smallest;
    std::optional<Rect> m_part;
    std::optional<Image> m_writtenPart;
    std::optional<Image> m_image;
    ImageProperties m_properties;
};

} // namespace vellumine::imaging
