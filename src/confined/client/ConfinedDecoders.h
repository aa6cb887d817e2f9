#pragma once

#include "confined/client/Allowance.h"
#include "confined/client/PictureHandover.h"
#include "confined/protocol/Confinement.h"
#include "imaging/Error.h"
#include "imaging/ImageSource.h"
#include "imaging/Limits.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace vellumine::confined {

class DecoderPool;

/// Picture files that are decoded by helper processes, one for each source that is being read at a
/// time; a helper serves many files, one after the other, and another one takes its place when it
/// dies. Nothing that a file holds is looked at in this process, but for what goes on with the
/// picture: its profile when colours are converted, its metadata when they are written.
///
/// Safe to use from several threads at once. Sources may outlive it.
class ConfinedDecoders {
public:
    explicit ConfinedDecoders(std::filesystem::path executable, Patience patience = {},
        Handover handover = Handover::fetched);
    ~ConfinedDecoders();
    ConfinedDecoders(const ConfinedDecoders&) = delete;
    ConfinedDecoders& operator=(const ConfinedDecoders&) = delete;

    /// The helper's program: beside the program itself, or where it is installed beside its folder;
    /// nothing when it is in neither place.
    [[nodiscard]] static std::optional<std::filesystem::path> findExecutable(
        const std::filesystem::path& programFolder);

    /// With the helper of the program in that folder; null when it is missing.
    [[nodiscard]] static std::shared_ptr<ConfinedDecoders> ofProgram(
        const std::filesystem::path& programFolder);

    /// As ImageSource::create(). A helper that dies, is overdue or asks for too much over a file
    /// fails that file alone, with Io; a stop that is requested fails it at once.
    [[nodiscard]] imaging::Result<imaging::ImageSource> open(const std::filesystem::path& path,
        const imaging::Limits& limits, const std::stop_token& interruption = {});

    /// Ends the helpers that serve nobody, after a batch.
    void releaseIdle();

    /// How many helpers died, were overdue or made no sense so far.
    [[nodiscard]] std::size_t deathCount() const;

    /// What holds the helpers back; nothing when they cannot be started.
    [[nodiscard]] std::optional<Confinement> confinement();

private:
    std::shared_ptr<DecoderPool> m_pool;
};

/// ConfinedDecoders::open() as a function that keeps the decoders.
[[nodiscard]] std::function<imaging::Result<imaging::ImageSource>(const std::filesystem::path& path,
    const imaging::Limits& limits, const std::stop_token& interruption)>
opener(std::shared_ptr<ConfinedDecoders> decoders);

} // namespace vellumine::confined
