#pragma once

#include "confined/client/HelperSession.h"
#include "imaging/SourceDecoder.h"

#include <memory>

namespace vellumine::confined {

/// A picture file that a helper decodes. Pictures that are to be drawn stay with it.
class ConfinedDecoder final : public imaging::SourceDecoder {
public:
    explicit ConfinedDecoder(std::shared_ptr<HelperSession> session);

    [[nodiscard]] imaging::UniformType type() const override { return m_session->type(); }
    [[nodiscard]] const imaging::ImageHeader& header() const override
    {
        return m_session->header();
    }

    imaging::Result<imaging::SourcePicture> decode(const imaging::PictureWish& wish) override;

private:
    std::shared_ptr<HelperSession> m_session;
};

} // namespace vellumine::confined
