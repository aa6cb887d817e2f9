#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace vellumine::platform {

/// Why an operation on files failed, in the system's own words.
struct FileError {
    QString text;

    /// For an errno value.
    [[nodiscard]] static FileError fromErrno(int code);

    friend bool operator==(const FileError&, const FileError&) = default;
};

template <typename T> using Result = tl::expected<T, FileError>;

/// The failing half of a Result for an errno value.
[[nodiscard]] inline tl::unexpected<FileError> failure(int code)
{
    return tl::unexpected<FileError>(FileError::fromErrno(code));
}

} // namespace vellumine::platform
