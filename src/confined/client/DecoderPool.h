#pragma once

#include "confined/client/Allowance.h"
#include "confined/client/DecoderProcess.h"
#include "confined/client/PictureHandover.h"
#include "imaging/Error.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

namespace vellumine::confined {

/// The helpers of a program, and what is known about them. Safe to use from several threads at
/// once.
class DecoderPool {
public:
    /// A helper on loan. It goes back only where it is said to be of use still.
    struct Loan {
        std::unique_ptr<DecoderProcess> process;
        bool hasServedBefore = false;
    };

    DecoderPool(std::filesystem::path executable, Patience patience, Handover handover);

    [[nodiscard]] const Patience& patience() const { return m_patience; }
    [[nodiscard]] Handover handover() const { return m_handover; }

    /// One that waits for work, or a new one. Fails as DecoderProcess::start() does.
    [[nodiscard]] imaging::Result<Loan> takeAny();

    /// One that has seen no file yet. Fails as DecoderProcess::start() does.
    [[nodiscard]] imaging::Result<Loan> takeFresh() const;

    void giveBack(Loan loan);

    /// Ends the helpers that serve nobody.
    void releaseIdle();

    void countDeath();
    [[nodiscard]] std::size_t deathCount() const;

private:
    std::unique_ptr<DecoderProcess> takeIdle();

    const std::filesystem::path m_executable;
    const Patience m_patience;
    const Handover m_handover;
    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<DecoderProcess>> m_idle;
    std::size_t m_deaths = 0;
};

} // namespace vellumine::confined
