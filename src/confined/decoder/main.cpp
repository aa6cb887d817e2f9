#include "confined/decoder/Lockdown.h"
#include "confined/protocol/Channel.h"
#include "confined/protocol/HelperDescriptor.h"
#include "confined/protocol/Messages.h"
#include "confined/service/DecoderService.h"
#include "imaging/codecs/heic/HeicCodec.h"
#include "imaging/colour/InstalledCmyk.h"

#include <cstdio>
#include <malloc.h>
#include <sys/socket.h>

// vellumine-decoder: reads pictures from descriptors that it is handed, and can do nothing else.
// Started by the programs that convert pictures, never by people.

namespace {

bool isSocket(int descriptor)
{
    int type = 0;
    socklen_t size = sizeof(type);
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0
        && type == SOCK_SEQPACKET;
}

/// Of what the codecs' libraries allocate for one picture, the pages serve the next one: fresh ones
/// would have to be zeroed first. The pixels themselves have an arena. Nothing above a moderate
/// size is kept.
void keepMemory()
{
    constexpr int keptBytes = 128 << 20;
    ::mallopt(M_MMAP_MAX, 0);
    ::mallopt(M_TRIM_THRESHOLD, keptBytes);
    // Each of a codec's threads would have a heap of its own, whose addresses count as memory.
    ::mallopt(M_ARENA_MAX, 2);
}

} // namespace

int main()
{
    using namespace vellumine;

    if (!isSocket(confined::helperDescriptor)) {
        std::fputs(
            "This program is part of Vellumine, which starts it where it is needed.\n", stderr);
        return 2;
    }
    keepMemory();
    imaging::colour::openInstalledCmykProfiles();
    imaging::heic::loadCodecs();
    const confined::Channel channel(imaging::FileDescriptor::adopted(confined::helperDescriptor));
    const confined::Confinement inForce = confined::lockDown();
    if (!channel.send(
            confined::serialised(confined::Reply(confined::ReadyReply { inForce })), nullptr)) {
        return 1;
    }
    confined::DecoderService().serve(channel);
    return 0;
}
