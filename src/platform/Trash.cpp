#include "platform/Trash.h"

#include "platform/FilePath.h"

#include <gio/gio.h>

#include <memory>

namespace vellumine::platform {

namespace {

struct ObjectUnref {
    void operator()(void* object) const { g_object_unref(object); }
};

struct ErrorFree {
    void operator()(GError* error) const { g_error_free(error); }
};

} // namespace

Result<void> moveToTrash(const QUrl& url)
{
    const std::unique_ptr<GFile, ObjectUnref> file(g_file_new_for_path(toPath(url).c_str()));
    GError* rawError = nullptr;
    const bool moved = g_file_trash(file.get(), nullptr, &rawError) != FALSE;
    const std::unique_ptr<GError, ErrorFree> error(rawError);
    if (!moved) {
        return tl::unexpected(FileError { QString::fromUtf8(error->message) });
    }
    return {};
}

} // namespace vellumine::platform
