#include "confined/protocol/ByteStream.h"
#include "confined/service/DecoderService.h"

#include "DecoderFuzzer.h"

#include <sys/mman.h>
#include <unistd.h>

// The helper's side of the protocol: the input is a list of messages, each with its length in front
// and with a file that comes along; what is left is the content of the file.

using namespace vellumine;
using fuzz::require;

namespace {

std::optional<imaging::FileDescriptor> fileWith(imaging::ByteSpan content)
{
    auto file = imaging::FileDescriptor::adopted(::memfd_create("file", MFD_CLOEXEC));
    require(::pwrite(file.number(), content.data(), content.size(), 0)
        == static_cast<ssize_t>(content.size()));
    return file;
}

/// Keeps a helper to pictures that take milliseconds.
confined::Request bounded(confined::Request request)
{
    if (auto* const open = std::get_if<confined::OpenRequest>(&request)) {
        open->limits = fuzz::fuzzLimits;
    }
    return request;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    imaging::ByteSpan rest = std::as_bytes(std::span(data, size));
    if (rest.empty()) {
        return 0;
    }
    const auto count = std::min<std::size_t>(std::to_integer<std::size_t>(rest.front()), 8);
    rest = rest.subspan(1);
    std::vector<imaging::ByteSpan> messages;
    for (std::size_t i = 0; i < count && !rest.empty(); ++i) {
        const auto length = std::min(std::to_integer<std::size_t>(rest.front()), rest.size() - 1);
        messages.push_back(rest.subspan(1, length));
        rest = rest.subspan(1 + length);
    }
    confined::DecoderService service;
    for (const imaging::ByteSpan message : messages) {
        const auto request = confined::parseRequest(message);
        if (!request) {
            continue;
        }
        const auto answer = service.answer(bounded(*request), fileWith(rest));
        // What is said is understood.
        require(!answer || confined::parseReply(confined::serialised(answer->reply)));
    }
    return 0;
}
