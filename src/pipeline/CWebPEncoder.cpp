#include "imaging/codecs/LittleEndian.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/TemporaryFile.h"
#include "platform/ChildProcess.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"
#include "platform/UniqueName.h"

#include <QCoreApplication>
#include <QStringDecoder>

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace vellumine {

using platform::ExistingItem;
using platform::PendingFile;
using platform::toPath;

namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(CWebPEncoder)
};

QUrl urlOf(const std::filesystem::path& path)
{
    return platform::fileUrl(path);
}

const char* metadataArgument(const OptimizerSettings& settings)
{
    if (settings.removeMetadata) {
        return settings.removeColorManagement ? "none" : "icc";
    }
    return settings.removeColorManagement ? "exif,xmp" : "all";
}

std::string qualityArgument(double quality)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!std::isfinite(quality) || quality < -limit || quality >= limit) {
        qFatal("the quality is no number that can be passed on");
    }
    return std::to_string(static_cast<qint64>(quality));
}

std::vector<std::string> encoderArguments(const OptimizerSettings& settings,
    const std::filesystem::path& pam, const std::filesystem::path& webP)
{
    std::vector<std::string> arguments { "-quiet", "-metadata", metadataArgument(settings) };
    if (settings.usesLossyCompression()) {
        arguments.insert(arguments.end(), { "-q", qualityArgument(settings.quality) });
    } else {
        arguments.emplace_back("-lossless");
    }
    arguments.insert(arguments.end(), { pam.string(), "-o", webP.string() });
    return arguments;
}

/// The encoder takes and gives back large blocks again and again, and each time the system clears
/// every page anew: a tenth of its time. With these settings of glibc's allocator it keeps what it
/// has had, in huge pages where the system gives them to who asks. Other systems' libraries do not
/// look at them.
constexpr const char* allocatorSettings = "GLIBC_TUNABLES=glibc.malloc.hugetlb=1"
                                          ":glibc.malloc.mmap_threshold=33554432"
                                          ":glibc.malloc.trim_threshold=4294967296"
                                          ":glibc.malloc.top_pad=67108864";

QString overdueText(std::chrono::milliseconds patience)
{
    return Translated::tr("cwebp did not finish within %1 seconds")
        .arg(std::chrono::ceil<std::chrono::seconds>(patience).count());
}

/// The encoder's own words, empty when they are no UTF-8.
QString trimmedText(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString() : text.trimmed();
}

/// Whether the file is as long as WebP says itself, in the header of its RIFF container:
/// cwebp 1.2.4 does not notice when its last block finds no room on the disk. What has no such
/// header is judged by nobody here, but for being empty.
bool isWhole(const std::filesystem::path& webP)
{
    constexpr std::size_t headerBytes = 8; // "RIFF" and the length of what follows
    std::array<std::byte, headerBytes> header {};
    std::ifstream file(webP, std::ios::binary);
    file.read(reinterpret_cast<char*>(header.data()), headerBytes);
    const auto bytesRead = static_cast<std::size_t>(file.gcount());
    if (bytesRead < 4 || std::memcmp(header.data(), "RIFF", 4) != 0) {
        return bytesRead > 0;
    }
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(webP, error);
    return !error && bytesRead == headerBytes
        && size - headerBytes >= imaging::littleEndian32(header, 4);
}

/// Brings the encoder's output to its place: beside it first, then over it in one step.
platform::Result<void> place(
    const std::filesystem::path& webP, const std::filesystem::path& output, ExistingItem existing)
{
    auto pending = PendingFile::beside(output);
    if (!pending) {
        return tl::unexpected(pending.error());
    }
    if (auto copied = platform::copyInto(webP, pending->file()); !copied) {
        return copied;
    }
    return std::move(*pending).publish(existing);
}

} // namespace

std::chrono::milliseconds EncoderPatience::forPicture(imaging::Size size) const
{
    const std::int64_t pixels = std::int64_t { size.width } * size.height;
    return atLeast + perMegapixel * pixels / 1'000'000;
}

std::optional<QUrl> ImageOptimizer::bundledCWebPExecutableURL(
    const std::filesystem::path& executableFolder)
{
    const std::filesystem::path override = qgetenv("VELLUMINE_CWEBP_PATH").toStdString();
    if (!override.empty() && platform::isExecutableFile(override)) {
        std::error_code error; // of a working folder that is gone
        return urlOf(std::filesystem::absolute(override, error));
    }
    const std::filesystem::path bundled = executableFolder / "cwebp";
    if (platform::isExecutableFile(bundled)) {
        return urlOf(bundled);
    }
    return std::nullopt;
}

Outcome<void> ImageOptimizer::encodeWebPWithCWebP(imaging::Image&& image, const QUrl& outputURL,
    ExistingItem existing, const OptimizerSettings& settings,
    const imaging::ImageProperties& /*sourceProperties*/, const ConversionEnvironment& environment)
{
    const auto encoder = bundledCWebPExecutableURL(environment.executableFolder);
    if (!encoder) {
        return failed(
            UnsupportedFormat { Translated::tr("WebP support is not bundled in this build.") });
    }
    const auto patience = environment.encoderPatience.forPicture(image.size());
    const TemporaryFile pam(
        environment.temporaryFolder / platform::uniqueName(workFilePrefix, encoderInputSuffix));
    const TemporaryFile webP(
        environment.temporaryFolder / platform::uniqueName(workFilePrefix, encoderOutputSuffix));
    {
        // The encoder reads the file: the pixels are not needed while it runs.
        const imaging::Image pixels = std::move(image);
        if (auto written = writePAM(pixels, urlOf(pam.path())); !written) {
            return written;
        }
    }
    const auto exit = platform::runProcess(toPath(*encoder),
        encoderArguments(settings, pam.path(), webP.path()),
        { .interruption = environment.interruption,
            .time = patience,
            .environmentDefaults = { allocatorSettings } });
    if (auto goesOn = checkInterruption(environment); !goesOn) {
        return goesOn;
    }
    if (!exit) {
        return failed(
            UnsupportedFormat { Translated::tr("WebP encoder at %1 could not be launched: %2")
                                    .arg(encoder->toLocalFile(), exit.error().text) });
    }
    if (exit->hasTimedOut) {
        return failed(CannotFinalize { outputURL, overdueText(patience) });
    }
    if (exit->status != 0) {
        const QString text = trimmedText(exit->standardError);
        return failed(CannotFinalize { outputURL,
            text.isEmpty() ? Translated::tr("cwebp exited with status %1").arg(exit->status)
                           : text });
    }
    if (platform::itemAt(webP.path()) == platform::ItemKind::none) {
        return failed(
            CannotFinalize { outputURL, Translated::tr("cwebp did not create an output file") });
    }
    if (!isWhole(webP.path())) {
        return failed(
            CannotFinalize { outputURL, Translated::tr("cwebp left an incomplete output file") });
    }
    if (const auto placed = place(webP.path(), toPath(outputURL), existing); !placed) {
        return failed(CannotWriteOutput { outputURL, placed.error().text });
    }
    return {};
}

} // namespace vellumine
