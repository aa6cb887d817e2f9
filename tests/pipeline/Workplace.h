#pragma once

#include "core/OptimizerSettings.h"
#include "imaging/Image.h"
#include "imaging/ImageDestination.h"
#include "imaging/UniformType.h"
#include "pipeline/ConversionEnvironment.h"
#include "support/TestImages.h"

#include <QUrl>

#include <filesystem>
#include <string>
#include <string_view>

namespace vellumine::test {

/// A file URL for a path.
[[nodiscard]] QUrl urlOf(const std::filesystem::path& path);

/// Writes the picture in full quality.
void writePicture(
    const std::filesystem::path& path, const imaging::Image& image, imaging::UniformType type);

/// The picture in a file, as an ordinary reader sees it: upright.
[[nodiscard]] imaging::Image readPicture(const std::filesystem::path& path);

/// The file's bytes as text.
[[nodiscard]] std::string textOf(const std::filesystem::path& path);

/// Settings that leave the pixels alone.
[[nodiscard]] OptimizerSettings plainSettings(OutputFormat format);

/// Folders of one test's own: pictures, temporary files, and a program folder with the encoder.
class Workplace {
public:
    Workplace();

    [[nodiscard]] std::filesystem::path pictures() const { return m_folder / "pictures"; }
    [[nodiscard]] std::filesystem::path temporary() const { return m_folder / "temporary"; }
    [[nodiscard]] std::filesystem::path programs() const { return m_folder / "programs"; }

    /// Puts a shell script in the real encoder's place.
    void replaceEncoder(std::string_view script) const;
    /// Takes the encoder away.
    void removeEncoder() const;

    /// An environment of these folders, with a Trash that takes nothing.
    [[nodiscard]] ConversionEnvironment environment() const;

private:
    TemporaryFolder m_folder;
};

} // namespace vellumine::test
