#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/Image.h"
#include "imaging/Limits.h"
#include "imaging/Orientation.h"
#include "imaging/PictureWish.h"
#include "imaging/UniformType.h"
#include "imaging/metadata/FileTexts.h"
#include "imaging/metadata/MetadataBlocks.h"
#include "imaging/metadata/Resolution.h"

#include <optional>

namespace vellumine::imaging {

/// What a file's header says, read without decoding.
struct ImageHeader {
    Size size; ///< as stored, before the orientation tag; for HEIC after its own rotation and crop
    PixelLayout layout; ///< of the picture that decode() gives
};

struct DecodeOptions {
    Limits limits;
    /// A codec that can decode a part of the picture for less than the whole does; any other
    /// decodes the whole. One that can draw as it is planned does that, any other gives it back to
    /// be drawn.
    PictureWish wish;
};

struct DecodedImage {
    Image image;
    /// The size of the whole stored picture, whatever part `image` is.
    Size storedSize;
    /// True when `image` is the region that was wished for and not the whole picture.
    bool isRegion = false;
    MetadataBlocks metadata;
    /// What the format itself says (TIFF's tag). Without a value, EXIF's orientation counts.
    std::optional<Orientation> orientation;
    /// True when the picture was drawn as it was planned, and nothing else of it is there but its
    /// middle: what needs more fails with Unsupported.
    bool isDrawn = false;
    /// In which the picture is stored that the codec has turned itself: its metadata may still be
    /// of the stored one.
    Orientation turnedFrom = Orientation::topLeft;
    /// What the format itself says. Without a value, EXIF's resolution counts.
    std::optional<Resolution> resolution = {};
    /// Comments and other texts beside the metadata's blocks.
    FileTexts texts = {};
};

/// Whether the picture's profile is written into the file. Device spaces never have one.
enum class ProfilePolicy { embed, omit };

/// What to spend on making a lossless file small.
enum class Effort { smallest, fastest };

struct EncodeOptions {
    double quality = 1.0; ///< lossy formats, 0.01 to 1
    ProfilePolicy profile = ProfilePolicy::embed;
    Effort effort = Effort::smallest;
    /// Blocks that may travel as they are: already without orientation. What the format cannot
    /// carry is left out.
    MetadataBlocks metadata;
    /// What is written in the format's own words, where it has such; nothing is made up without.
    std::optional<Resolution> resolution = {};
    /// Texts of a file of the same format. Those that it cannot carry are left out.
    FileTexts texts = {};
};

/// One format. The functions are stateless and safe to call from several threads at once; a
/// library's exceptions and long jumps never leave them.
struct Codec {
    UniformType type;
    /// Whether the content is of the type, by its first bytes alone.
    bool (*sniff)(ByteSpan file);
    /// Fails with Malformed or Truncated when there is no usable header.
    Result<ImageHeader> (*readHeader)(ByteSpan file);
    /// The first picture of the file. Fails with LimitExceeded before any pixel is allocated, with
    /// Truncated when picture data is missing (a missing end marker alone is no failure), and with
    /// Malformed or Unsupported.
    Result<DecodedImage> (*decode)(ByteSpan file, const DecodeOptions& options);
    /// The whole encoded file. Takes any layout, in rows; null for a format that is only read.
    Result<ByteBuffer> (*encode)(const Image& image, const EncodeOptions& options);
    /// What decode() would find in a part of the file that encode() made of the picture, at the
    /// cost of the part; null where that takes the whole file. A codec with this takes pictures
    /// without rows, too, and asks for some rows at a time.
    Result<Image> (*roundTrip)(
        const Image& image, const EncodeOptions& options, ByteSpan file, Rect part)
        = nullptr;
};

} // namespace vellumine::imaging
