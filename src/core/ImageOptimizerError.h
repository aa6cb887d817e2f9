#pragma once

#include "platform/FileError.h"

#include <QString>
#include <QUrl>
#include <tl/expected.hpp>

#include <optional>
#include <variant>

namespace vellumine {

struct UnsupportedFormat {
    QString text;
    friend bool operator==(const UnsupportedFormat&, const UnsupportedFormat&) = default;
};

struct CannotCreateDestination {
    QUrl url;
    friend bool operator==(const CannotCreateDestination&, const CannotCreateDestination&)
        = default;
};

struct CannotFinalize {
    QUrl url;
    std::optional<QString> detail;
    friend bool operator==(const CannotFinalize&, const CannotFinalize&) = default;
};

struct CannotWriteOutput {
    QUrl url;
    QString detail;
    friend bool operator==(const CannotWriteOutput&, const CannotWriteOutput&) = default;
};

/// The source is no picture that can be opened and decoded.
struct UnreadableImage {
    friend bool operator==(UnreadableImage, UnreadableImage) = default;
};

/// The user chose to keep the file that stands where the output goes.
struct OverwriteDeclined {
    friend bool operator==(OverwriteDeclined, OverwriteDeclined) = default;
};

struct MissingDestinationFolder {
    friend bool operator==(MissingDestinationFolder, MissingDestinationFolder) = default;
};

/// What the conversion of one file can fail with by itself.
using ImageOptimizerError = std::variant<UnsupportedFormat, CannotCreateDestination, CannotFinalize,
    CannotWriteOutput, UnreadableImage, OverwriteDeclined, MissingDestinationFolder>;

/// The text for the user. Files are named by their last path component.
[[nodiscard]] QString errorDescription(const ImageOptimizerError& error);

/// Any failure of a conversion: its own, or the system's with the system's words.
using OptimizeError = std::variant<ImageOptimizerError, platform::FileError>;

[[nodiscard]] QString localizedDescription(const OptimizeError& error);

template <typename T> using Outcome = tl::expected<T, OptimizeError>;

/// The failing half of an Outcome: `return failed(UnreadableImage {});`
[[nodiscard]] inline tl::unexpected<OptimizeError> failed(ImageOptimizerError error)
{
    return tl::unexpected<OptimizeError>(std::move(error));
}

} // namespace vellumine
