#include "pipeline/Workplace.h"

#include "imaging/ImageSource.h"
#include "platform/FilePath.h"
#include "support/FakeProgram.h"

#include <QStandardPaths>

#include <algorithm>
#include <stdexcept>

namespace vellumine::test {

QUrl urlOf(const std::filesystem::path& path)
{
    return platform::fileUrl(path);
}

void writePicture(
    const std::filesystem::path& path, const imaging::Image& image, imaging::UniformType type)
{
    auto destination = imaging::ImageDestination::create(path, type);
    if (!destination) {
        throw std::runtime_error("cannot create " + path.string());
    }
    destination->addImage(image, {});
    if (const auto done = destination->finalize(); !done) {
        throw std::runtime_error("cannot write " + path.string() + ": " + done.error().detail);
    }
}

imaging::Image readPicture(const std::filesystem::path& path)
{
    auto source = imaging::ImageSource::create(path, imaging::Limits());
    if (!source) {
        throw std::runtime_error("cannot open " + path.string() + ": " + source.error().detail);
    }
    const imaging::Size size = source->storedSize();
    const auto image = source->thumbnailWithTransform(std::max(size.width, size.height));
    if (!image) {
        throw std::runtime_error("cannot read " + path.string() + ": " + image.error().detail);
    }
    return *image;
}

std::string textOf(const std::filesystem::path& path)
{
    const auto bytes = readFile(path);
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

OptimizerSettings plainSettings(OutputFormat format)
{
    OptimizerSettings settings;
    settings.outputFormat = format;
    settings.resizeMode = ResizeMode::none;
    settings.optimizeColorForSharing = false;
    settings.removeColorManagement = false;
    return settings;
}

Workplace::Workplace()
{
    for (const auto& folder : { pictures(), temporary(), programs() }) {
        std::filesystem::create_directory(folder);
    }
    const QString encoder = QStandardPaths::findExecutable(QStringLiteral("cwebp"));
    if (!encoder.isEmpty()) {
        std::filesystem::create_symlink(encoder.toStdString(), programs() / "cwebp");
    }
    qunsetenv("VELLUMINE_CWEBP_PATH");
}

void Workplace::replaceEncoder(std::string_view script) const
{
    removeEncoder();
    writeProgram(programs() / "cwebp", script);
}

void Workplace::removeEncoder() const
{
    std::filesystem::remove(programs() / "cwebp");
}

ConversionEnvironment Workplace::environment() const
{
    ConversionEnvironment environment;
    environment.temporaryFolder = temporary();
    environment.executableFolder = programs();
    environment.moveToTrash = [](const QUrl&) { return platform::failure(EPERM); };
    return environment;
}

} // namespace vellumine::test
