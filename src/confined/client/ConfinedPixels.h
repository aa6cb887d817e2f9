#pragma once

#include "confined/client/HelperSession.h"
#include "imaging/DeferredPixels.h"

#include <memory>
#include <mutex>

namespace vellumine::confined {

/// A decoded picture that stays with its helper, which is kept for as long.
class ConfinedPixels final : public imaging::DeferredPixels {
public:
    /// The session must have decoded a picture, in those colours.
    ConfinedPixels(std::shared_ptr<HelperSession> session, imaging::ColorSpace colorSpace);

    [[nodiscard]] imaging::Result<imaging::Image> rows(imaging::Rect part) const override;
    [[nodiscard]] imaging::Result<imaging::Image> drawn(
        const imaging::Drawing& drawing) const override;
    [[nodiscard]] std::shared_ptr<const imaging::ycc::PlaneSource> planes() const override;

private:
    const std::shared_ptr<HelperSession> m_session;
    const imaging::ColorSpace m_colorSpace;
    mutable std::mutex m_mutex;
    mutable std::shared_ptr<const imaging::ycc::PlaneSource> m_planes; ///< once asked for
};

} // namespace vellumine::confined
