#include "cli/InputFiles.h"

#include "platform/FilePath.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>

namespace vellumine::cli {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 10> extensions { "jpg", "jpeg", "png", "gif", "tif", "tiff",
    "bmp", "heic", "heif", "webp" };

bool isPictureName(const fs::path& path)
{
    std::string extension = path.extension().string();
    if (extension.empty()) {
        return false;
    }
    extension.erase(0, 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

class Collector {
public:
    void add(const fs::path& path)
    {
        if (!m_seen.insert(path.lexically_normal().string()).second) {
            return;
        }
        const QString text = QFile::decodeName(path.c_str());
        const bool isText = QFile::encodeName(text).toStdString() == path.string();
        m_files.push_back(
            { platform::fileUrl(text), isText ? InputFile::Name::Text : InputFile::Name::NotText });
    }

    void walk(const fs::path& folder)
    {
        std::error_code error;
        std::vector<fs::directory_entry> entries;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            if (!entry->path().filename().string().starts_with('.')) {
                entries.push_back(*entry);
            }
        }
        std::sort(entries.begin(), entries.end());
        for (const fs::directory_entry& entry : entries) {
            std::error_code unknown;
            if (entry.symlink_status(unknown).type() == fs::file_type::directory) {
                walk(entry.path());
            } else if (isPictureName(entry.path())) {
                add(entry.path());
            }
        }
    }

    std::vector<InputFile> take() && { return std::move(m_files); }

private:
    std::vector<InputFile> m_files;
    std::set<std::string> m_seen;
};

} // namespace

std::vector<InputFile> inputFiles(std::span<const fs::path> paths)
{
    Collector collector;
    for (const fs::path& given : paths) {
        std::error_code error;
        const fs::path path = fs::absolute(given, error);
        const fs::file_status status = fs::status(path, error);
        if (isPictureName(path) || !fs::exists(status)) {
            collector.add(path);
        } else if (fs::is_directory(status)) {
            collector.walk(path);
        }
    }
    return std::move(collector).take();
}

} // namespace vellumine::cli
