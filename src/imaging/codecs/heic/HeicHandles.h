#pragma once

#include "imaging/Error.h"

#include <libheif/heif.h>
#include <memory>
#include <string>

namespace vellumine::imaging::heic {

struct HeifDeleter {
    void operator()(heif_context* it) const { heif_context_free(it); }
    void operator()(heif_image_handle* it) const { heif_image_handle_release(it); }
    void operator()(heif_image* it) const { heif_image_release(it); }
    void operator()(heif_encoder* it) const { heif_encoder_release(it); }
    void operator()(heif_decoding_options* it) const { heif_decoding_options_free(it); }
    void operator()(heif_encoding_options* it) const { heif_encoding_options_free(it); }
    void operator()(heif_color_profile_nclx* it) const { heif_nclx_color_profile_free(it); }
};
/// Any of the library's objects.
template <typename Object> using HeifPointer = std::unique_ptr<Object, HeifDeleter>;

inline bool isOk(const heif_error& error)
{
    return error.code == heif_error_Ok;
}

/// What went wrong while reading.
inline tl::unexpected<Error> readFailure(const heif_error& error)
{
    const auto kind = [&error] {
        if (error.subcode == heif_suberror_Security_limit_exceeded) {
            return Error::Kind::limitExceeded;
        }
        if (error.subcode == heif_suberror_End_of_data) {
            return Error::Kind::truncated;
        }
        switch (error.code) {
        case heif_error_Unsupported_feature:
        case heif_error_Unsupported_filetype:
            return Error::Kind::unsupported;
        case heif_error_Memory_allocation_error:
            return Error::Kind::outOfMemory;
        default:
            return Error::Kind::malformed;
        }
    }();
    return failure(kind, error.message != nullptr ? error.message : "");
}

/// What went wrong while writing.
inline tl::unexpected<Error> writeFailure(const heif_error& error)
{
    return failure(error.code == heif_error_Memory_allocation_error ? Error::Kind::outOfMemory
                                                                    : Error::Kind::encodingFailed,
        error.message != nullptr ? error.message : "");
}

} // namespace vellumine::imaging::heic
