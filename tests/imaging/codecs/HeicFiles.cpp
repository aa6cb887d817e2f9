#include "imaging/codecs/HeicFiles.h"

#include <cstring>
#include <memory>
#include <stdexcept>

namespace vellumine::test {

namespace {

template <typename Object> using Owned = std::unique_ptr<Object, void (*)(Object*)>;

void require(const heif_error& error)
{
    if (error.code != heif_error_Ok) {
        throw std::runtime_error(error.message);
    }
}

heif_error append(heif_context* /*context*/, const void* data, std::size_t size, void* file)
{
    const auto* const bytes = static_cast<const std::byte*>(data);
    auto& buffer = *static_cast<imaging::ByteBuffer*>(file);
    buffer.insert(buffer.end(), bytes, bytes + size);
    return { heif_error_Ok, heif_suberror_Unspecified, "" };
}

heif_chroma interleaving(int bits, bool alpha)
{
    if (bits == 8) {
        return alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
    }
    return alpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
}

void fill(heif_image* target, const imaging::Image& image, int bits)
{
    int stride = 0;
    std::uint8_t* const plane = heif_image_get_plane(target, heif_channel_interleaved, &stride);
    const auto samples = static_cast<std::size_t>(image.width() * image.layout().channels());
    for (int y = 0; y < image.height(); ++y) {
        std::uint8_t* const row = plane + static_cast<std::ptrdiff_t>(y) * stride;
        for (std::size_t i = 0; i < samples; ++i) {
            if (bits == 8) {
                row[i] = image.row8(y)[i];
            } else {
                const auto word = static_cast<std::uint16_t>(
                    image.row16(y)[i] >> static_cast<unsigned>(16 - bits));
                row[2 * i] = static_cast<std::uint8_t>(word & 0xFFU);
                row[2 * i + 1] = static_cast<std::uint8_t>(word >> 8U);
            }
        }
    }
}

} // namespace

imaging::ByteBuffer heicFile(const imaging::Image& image, const HeicRecipe& recipe)
{
    const Owned<heif_context> context(heif_context_alloc(), heif_context_free);
    heif_encoder* encoder = nullptr;
    require(heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &encoder));
    const Owned<heif_encoder> encoderOwner(encoder, heif_encoder_release);
    require(heif_encoder_set_lossy_quality(encoder, recipe.quality));
    require(heif_encoder_set_parameter(encoder, "preset", "ultrafast"));

    heif_image* picture = nullptr;
    require(heif_image_create(image.width(), image.height(), heif_colorspace_RGB,
        interleaving(recipe.bits, image.hasAlpha()), &picture));
    const std::unique_ptr<heif_image, void (*)(const heif_image*)> owner(
        picture, heif_image_release);
    require(heif_image_add_plane(
        picture, heif_channel_interleaved, image.width(), image.height(), recipe.bits));
    fill(picture, image, recipe.bits);
    heif_image_set_premultiplied_alpha(
        picture, recipe.alpha == HeicRecipe::Alpha::premultiplied ? 1 : 0);

    const Owned<heif_encoding_options> options(
        heif_encoding_options_alloc(), heif_encoding_options_free);
    options->image_orientation = recipe.orientation;
    heif_color_profile_nclx description {};
    if (recipe.description) {
        description = *recipe.description;
        require(heif_image_set_nclx_color_profile(picture, &description));
        options->output_nclx_profile = &description;
        options->macOS_compatibility_workaround_no_nclx_profile = 0;
    }
    heif_image_handle* handle = nullptr;
    require(heif_context_encode_image(context.get(), picture, encoder, options.get(), &handle));
    const std::unique_ptr<heif_image_handle, void (*)(const heif_image_handle*)> handleOwner(
        handle, heif_image_handle_release);
    if (!recipe.exif.empty()) {
        require(heif_context_add_exif_metadata(
            context.get(), handle, recipe.exif.data(), static_cast<int>(recipe.exif.size())));
    }
    imaging::ByteBuffer file;
    heif_writer writer { 1, append };
    require(heif_context_write(context.get(), &writer, &file));
    return file;
}

} // namespace vellumine::test
