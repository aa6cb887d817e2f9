#include "support/SmallDisk.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>

namespace vellumine::test {

std::unique_ptr<SmallDisk> SmallDisk::create(std::size_t bytes)
{
    std::unique_ptr<SmallDisk> disk(new SmallDisk);
    const std::string options = "size=" + std::to_string(bytes);
    if (::mount("tmpfs", disk->path().c_str(), "tmpfs", 0, options.c_str()) != 0) {
        return nullptr;
    }
    return disk;
}

SmallDisk::~SmallDisk()
{
    ::umount2(m_folder.path().c_str(), MNT_DETACH);
}

void SmallDisk::fill() const
{
    const int file = ::open((m_folder / "filling").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) {
        throw std::runtime_error("the disk is full already");
    }
    const std::array<char, 4096> page {};
    while (::write(file, page.data(), page.size()) > 0) { }
    ::close(file);
}

} // namespace vellumine::test
