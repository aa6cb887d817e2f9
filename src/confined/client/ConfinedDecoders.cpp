#include "confined/client/ConfinedDecoders.h"

#include "confined/client/ConfinedDecoder.h"
#include "confined/client/DecoderPool.h"
#include "imaging/FileDescriptor.h"

#include <unistd.h>

#include <functional>
#include <utility>

namespace vellumine::confined {

using imaging::FileDescriptor;
using imaging::ImageSource;
using imaging::Limits;
using imaging::Result;

namespace {

constexpr const char* helperName = "vellumine-decoder";

} // namespace

ConfinedDecoders::ConfinedDecoders(
    std::filesystem::path executable, Patience patience, Handover handover)
    : m_pool(std::make_shared<DecoderPool>(std::move(executable), patience, handover))
{
}

ConfinedDecoders::~ConfinedDecoders() = default;

std::optional<std::filesystem::path> ConfinedDecoders::findExecutable(
    const std::filesystem::path& programFolder)
{
    for (const std::filesystem::path& candidate :
        { programFolder / helperName, programFolder / "../libexec/vellumine" / helperName }) {
        if (::access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::shared_ptr<ConfinedDecoders> ConfinedDecoders::ofProgram(
    const std::filesystem::path& programFolder)
{
    auto executable = findExecutable(programFolder);
    return executable ? std::make_shared<ConfinedDecoders>(std::move(*executable)) : nullptr;
}

Result<ImageSource> ConfinedDecoders::open(
    const std::filesystem::path& path, const Limits& limits, const std::stop_token& interruption)
{
    return FileDescriptor::openForReading(path)
        .and_then([&](FileDescriptor&& file) {
            return HelperSession::open(m_pool, std::move(file), limits, interruption);
        })
        .map([](std::shared_ptr<HelperSession>&& session) {
            return ImageSource::create(std::make_unique<ConfinedDecoder>(std::move(session)));
        });
}

void ConfinedDecoders::releaseIdle()
{
    m_pool->releaseIdle();
}

std::size_t ConfinedDecoders::deathCount() const
{
    return m_pool->deathCount();
}

std::optional<Confinement> ConfinedDecoders::confinement()
{
    auto loan = m_pool->takeAny();
    if (!loan) {
        return std::nullopt;
    }
    const Confinement found = loan->process->confinement();
    m_pool->giveBack(std::move(*loan));
    return found;
}

std::function<Result<ImageSource>(
    const std::filesystem::path& path, const Limits& limits, const std::stop_token& interruption)>
opener(std::shared_ptr<ConfinedDecoders> decoders)
{
    return [decoders = std::move(decoders)](const std::filesystem::path& path, const Limits& limits,
               const std::stop_token& interruption) {
        return decoders->open(path, limits, interruption);
    };
}

} // namespace vellumine::confined
