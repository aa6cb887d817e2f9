#pragma once

#include <string>
#include <tl/expected.hpp>

namespace vellumine::imaging {

/// Why an operation of the image service failed. The kind is for callers to decide on, the detail
/// for a developer to read; what a user sees is worded further up.
struct Error {
    enum class Kind {
        io, ///< the file could not be opened, read or written
        unknownType, ///< the content is of no type that the service knows
        malformed, ///< the content contradicts its format
        truncated, ///< picture data is missing
        unsupported, ///< valid, but of a kind that the service does not handle
        limitExceeded, ///< larger than the limits allow; nothing was allocated
        outOfMemory,
        encodingFailed, ///< the library could not write the picture
    };

    Kind kind;
    std::string detail;

    friend bool operator==(const Error&, const Error&) = default;
};

template <typename T> using Result = tl::expected<T, Error>;

/// The failing half of a Result, for `return failure(Error::Kind::malformed, "...")`.
[[nodiscard]] inline tl::unexpected<Error> failure(Error::Kind kind, std::string detail)
{
    return tl::unexpected<Error>(Error { kind, std::move(detail) });
}

} // namespace vellumine::imaging
