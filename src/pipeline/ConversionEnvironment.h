#pragma once

#include "imaging/Geometry.h"
#include "imaging/ImageSource.h"
#include "imaging/Limits.h"
#include "pipeline/MemoryBudget.h"
#include "pipeline/NeededFiles.h"
#include "pipeline/OverwritePrompt.h"
#include "platform/FileOperations.h"
#include "platform/SecurityScope.h"
#include "platform/Trash.h"

#include <QUrl>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>

namespace vellumine {

/// Opens a picture file, as ImageSource::create() does. A source that is decoded elsewhere fails
/// once a stop is requested.
using OpenImage
    = std::function<imaging::Result<imaging::ImageSource>(const std::filesystem::path& path,
        const imaging::Limits& limits, const std::stop_token& interruption)>;

/// Decodes in this process, and knows of no stop.
[[nodiscard]] inline imaging::Result<imaging::ImageSource> openHere(
    const std::filesystem::path& path, const imaging::Limits& limits,
    const std::stop_token& /*interruption*/)
{
    return imaging::ImageSource::create(path, limits);
}

/// How long the WebP encoder may take before it counts as hung: far more than it ever needs, on any
/// machine that is of use.
struct EncoderPatience {
    std::chrono::milliseconds atLeast = std::chrono::minutes(2);
    std::chrono::milliseconds perMegapixel = std::chrono::seconds(30);

    [[nodiscard]] std::chrono::milliseconds forPicture(imaging::Size size) const;
};

/// Whether a conversion leaves samples of its picture for a comparison behind.
enum class ComparisonSamples : std::uint8_t { make, leaveOut };

/// What a conversion needs from the world around it. One for all conversions of a batch; everything
/// in it is safe to use from several threads at once.
struct ConversionEnvironment {
    /// Whether an existing file may be replaced; called on the conversion's thread, which waits.
    std::function<OverwriteDecision(const QUrl&)> confirmOverwrite
        = [](const QUrl&) { return OverwriteDecision::skip; };
    std::function<platform::Result<void>(const QUrl&)> moveToTrash = platform::moveToTrash;
    std::shared_ptr<platform::SecurityScope> securityScope
        = std::make_shared<platform::DesktopSecurityScope>();
    OpenImage openImage = openHere;
    imaging::Limits limits = imaging::Limits::forThisMachine();
    std::shared_ptr<MemoryBudget> memoryBudget
        = std::make_shared<MemoryBudget>(MemoryBudget::bytesFor(limits));
    ComparisonSamples comparisonSamples = ComparisonSamples::make;
    /// For work files and preview samples.
    std::filesystem::path temporaryFolder = platform::temporaryFolder();
    /// Where the program's executable is, with the WebP encoder beside it.
    std::filesystem::path executableFolder;
    EncoderPatience encoderPatience;
    /// Once a stop is requested, conversions give up before their next large step, and a running
    /// WebP encoder is killed. They fail then and leave nothing behind; one that has written its
    /// output ends as it would have.
    std::stop_token interruption;
    /// Files that no output may replace; null for a conversion that is no part of a batch.
    std::shared_ptr<const NeededFiles> neededFiles;
};

} // namespace vellumine
