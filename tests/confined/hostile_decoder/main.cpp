#include "confined/protocol/Channel.h"
#include "confined/protocol/HelperDescriptor.h"
#include "confined/protocol/Messages.h"
#include "confined/protocol/PictureAttachments.h"
#include "confined/protocol/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

// Follows the protocol up to the point that its name says, and breaks it there. Pictures are 4 x 3
// pixels of grey.

namespace {

using namespace vellumine;
using confined::Channel;
using confined::DecodedReply;
using confined::PixelsReply;
using confined::PlanesReply;
using imaging::ByteBuffer;
using imaging::FileDescriptor;

constexpr imaging::Size size { 4, 3 };
constexpr imaging::PixelLayout layout { imaging::ColorModel::grey, 8, imaging::AlphaInfo::none };
constexpr std::size_t pixelBytes = 12;

[[noreturn]] void hang()
{
    while (true) {
        ::pause();
    }
}

[[noreturn]] void die()
{
    ::raise(SIGKILL);
    std::abort();
}

void say(
    const Channel& channel, const confined::Reply& reply, const FileDescriptor* memory = nullptr)
{
    (void)channel.send(confined::serialised(reply), memory);
}

ByteBuffer goodAttachments()
{
    return confined::serialised(confined::PictureAttachments {
        imaging::ColorSpace::grey(), imaging::Orientation::topLeft, {} });
}

const ByteBuffer pixels(pixelBytes, std::byte { 0x80 });

std::uint64_t addressOf(const ByteBuffer& bytes)
{
    return reinterpret_cast<std::uintptr_t>(bytes.data());
}

/// What a good helper would answer, with the parts that the attacks change.
struct Picture {
    ByteBuffer attachments = goodAttachments();
    std::size_t missingBytes = 0;
    int seals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;
    DecodedReply reply { .size = size,
        .layout = layout,
        .isRegion = false,
        .attachmentsAddress = addressOf(attachments),
        .attachmentsBytes = attachments.size() };
    PixelsReply given {
        .size = size, .layout = layout, .rowBytes = 4, .address = addressOf(pixels)
    };
    PlanesReply planes { .size = size,
        .subsampling = { 2, 2 },
        .planes
        = { { { 4, addressOf(pixels) }, { 2, addressOf(pixels) }, { 2, addressOf(pixels) } } } };
    void (*beforePixels)() = [] {};
    bool hasMemoryForRows = true;
};

FileDescriptor memoryWith(const Picture& picture, const ByteBuffer& bytes)
{
    FileDescriptor memory
        = FileDescriptor::adopted(::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (::write(memory.number(), bytes.data(), bytes.size() - picture.missingBytes) < 0
        || ::fcntl(memory.number(), F_ADD_SEALS, picture.seals) != 0) {
        std::abort();
    }
    return memory;
}

/// Answers the question for a picture and all that come after it, until it may be forgotten.
void hand(const Channel& channel, const Picture& picture)
{
    say(channel, picture.reply);
    const ByteBuffer* given = &picture.attachments;
    while (true) {
        const auto message = channel.receive();
        const auto request
            = message ? confined::parseRequest(message->bytes) : imaging::failure({}, "gone");
        if (!request || std::holds_alternative<confined::ReleaseRequest>(*request)) {
            return;
        }
        if (std::holds_alternative<confined::ShareRequest>(*request)) {
            const FileDescriptor memory = memoryWith(picture, *given);
            say(channel, confined::SharedReply {}, &memory);
        } else if (std::holds_alternative<confined::PlanesRequest>(*request)) {
            picture.beforePixels();
            say(channel, picture.planes);
        } else if (!picture.hasMemoryForRows) {
            say(channel, confined::FailedReply { { imaging::Error::Kind::outOfMemory, "full" } });
        } else {
            picture.beforePixels();
            given = &pixels;
            say(channel, picture.given);
        }
    }
}

/// The same with a change to the picture.
template <typename Change> void handChanged(const Channel& channel, Change change)
{
    Picture picture;
    change(picture);
    hand(channel, picture);
}

using Attack = void (*)(const Channel&);

// What is answered to the second question, the one for a picture, and to those after it.
const std::map<std::string, Attack> attacks {
    { "harmless", [](const Channel& channel) { hand(channel, {}); } },
    { "dies-decoding", [](const Channel&) { die(); } },
    { "hangs-decoding", [](const Channel&) { hang(); } },
    { "says-nothing-known",
        [](const Channel& channel) {
            (void)channel.send(ByteBuffer(17, std::byte { 0xEE }), nullptr);
        } },
    { "says-too-much",
        [](const Channel& channel) { (void)channel.send(ByteBuffer(100'000), nullptr); } },
    { "answers-another-question",
        [](const Channel& channel) { say(channel, confined::ReadyReply {}); } },
    { "is-of-another-size",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.reply.size = { 3, 4 }; });
        } },
    { "gives-a-part-unasked",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.reply.isRegion = true; });
        } },
    { "names-no-memory",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.given.address = 0; });
        } },
    { "defers-rows",
        [](const Channel& channel) {
            handChanged(channel,
                [](Picture& picture) { picture.given = { .size = size, .layout = layout }; });
        } },
    { "defers-its-drawing-for-ever",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) {
                picture.given = { .size = { 2, 2 }, .layout = imaging::rgba8Premultiplied };
            });
        } },
    { "rows-reach-into-nothing",
        [](const Channel& channel) {
            handChanged(channel,
                [](Picture& picture) { picture.given.rowBytes = std::uint64_t { 1 } << 46U; });
        } },
    { "gives-rows-of-another-size",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.given.size = { 4, 2 }; });
        } },
    { "gives-rows-of-another-layout",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) {
                picture.given.layout.bitsPerComponent = 16;
                picture.given.rowBytes = 8;
            });
        } },
    { "has-planes-of-another-size",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.planes.size = { 5, 3 }; });
        } },
    { "has-planes-in-nothing",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.planes.planes[1].address = 0; });
        } },
    { "has-planes-that-end-in-nothing",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) {
                picture.planes.planes[1].rowBytes = std::uint64_t { 1 } << 46U;
            });
        } },
    { "has-no-memory-for-rows",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.hasMemoryForRows = false; });
        } },
    { "dies-over-rows",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.beforePixels = [] { die(); }; });
        } },
    { "hangs-over-rows",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.beforePixels = [] { hang(); }; });
        } },
    { "attaches-nothing-that-is-there",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.reply.attachmentsAddress = 4096; });
        } },
    { "attaches-more-than-is-allowed",
        [](const Channel& channel) {
            handChanged(channel,
                [](Picture& picture) { picture.reply.attachmentsBytes = ~std::uint64_t { 0 }; });
        } },
    { "has-colours-of-another-model",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) {
                picture.attachments = confined::serialised(confined::PictureAttachments {
                    imaging::ColorSpace::deviceCmyk(), imaging::Orientation::topLeft, {} });
                picture.reply.attachmentsAddress = addressOf(picture.attachments);
                picture.reply.attachmentsBytes = picture.attachments.size();
            });
        } },
    { "attaches-garbage",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) {
                std::fill(
                    picture.attachments.begin(), picture.attachments.end(), std::byte { 0xFF });
            });
        } },
    { "attaches-less",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.reply.attachmentsBytes -= 1; });
        } },
    // These only show where memory is shared.
    { "shares-nothing",
        [](const Channel& channel) {
            const Picture picture;
            say(channel, picture.reply);
            (void)channel.receive();
            say(channel, confined::SharedReply {});
        } },
    { "shares-a-file",
        [](const Channel& channel) {
            const Picture picture;
            say(channel, picture.reply);
            (void)channel.receive();
            const FileDescriptor file = FileDescriptor::adopted(::open("/proc/self/exe", O_RDONLY));
            say(channel, confined::SharedReply {}, &file);
        } },
    { "shares-without-seals",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.seals = 0; });
        } },
    { "shares-and-can-still-write",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) {
                picture.seals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;
            });
        } },
    { "shares-and-can-still-cut",
        [](const Channel& channel) {
            handChanged(
                channel, [](Picture& picture) { picture.seals = F_SEAL_GROW | F_SEAL_WRITE; });
        } },
    { "shares-less-than-said",
        [](const Channel& channel) {
            handChanged(channel, [](Picture& picture) { picture.missingBytes = 1; });
        } },
};

/// Whether this one is to behave, as those do that come after the first one's death.
bool isSecondStart(const std::filesystem::path& program)
{
    const std::filesystem::path mark = program.string() + ".started";
    const bool second = std::filesystem::exists(mark);
    FileDescriptor::adopted(::open(mark.c_str(), O_WRONLY | O_CREAT, 0600));
    return second;
}

} // namespace

int main(int /*count*/, char** arguments)
{
    const std::filesystem::path program = arguments[0];
    const std::string name = program.filename().string();
    const Channel channel(FileDescriptor::adopted(confined::helperDescriptor));
    if (name == "dies-at-start") {
        die();
    }
    if (name == "is-of-another-build") {
        ByteBuffer ready = confined::serialised(confined::Reply(confined::ReadyReply {}));
        ready[1] = std::byte { 99 };
        (void)channel.send(ready, nullptr);
        hang();
    }
    say(channel, confined::ReadyReply {});
    const bool turnsLater = name.ends_with("-over-its-second-file") && !isSecondStart(program);
    for (int file = 1;; ++file) {
        auto message = channel.receive();
        if (!message) {
            die();
        }
        if (turnsLater && file == 2 && !name.starts_with("dies-over-rows")) {
            name.starts_with("dies") ? die() : say(channel, confined::ReadyReply {});
            continue;
        }
        if (name == "dies-opening") {
            die();
        }
        if (name == "hangs-opening") {
            hang();
        }
        if (name == "declares-too-much") {
            say(channel,
                confined::OpenedReply { imaging::UniformType::png, { { 65535, 65535 }, layout } });
            continue;
        }
        say(channel, confined::OpenedReply { imaging::UniformType::png, { size, layout } });
        if (!channel.receive()) {
            return 0;
        }
        if (turnsLater && file == 2) {
            attacks.at("dies-over-rows")(channel);
            continue;
        }
        const auto attack = attacks.find(name);
        (attack == attacks.end() ? attacks.at("harmless") : attack->second)(channel);
    }
}
