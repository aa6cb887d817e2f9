#include "confined/client/ConfinedDecoder.h"

#include "confined/client/ConfinedPixels.h"

#include <utility>

namespace vellumine::confined {

using imaging::Image;
using imaging::Orientation;
using imaging::Result;
using imaging::SourcePicture;

ConfinedDecoder::ConfinedDecoder(std::shared_ptr<HelperSession> session)
    : m_session(std::move(session))
{
}

Result<SourcePicture> ConfinedDecoder::decode(const imaging::PictureWish& wish)
{
    auto decoded = m_session->decode(wish);
    if (!decoded) {
        return tl::unexpected(decoded.error());
    }
    PictureAttachments& attachments = decoded->attachments;
    if (wish.use == imaging::ImageUse::toBeDrawn && !decoded->isRegion) {
        auto pixels = std::make_shared<ConfinedPixels>(m_session, attachments.colorSpace);
        return SourcePicture { Image(decoded->size, decoded->layout,
                                   std::move(attachments.colorSpace), std::move(pixels),
                                   Orientation::topLeft),
            false, attachments.orientation, std::move(attachments.properties) };
    }
    auto image = m_session->rows({ 0, 0, decoded->size.width, decoded->size.height });
    if (!decoded->isRegion) {
        m_session->close(); // nothing else will be asked for
    }
    return std::move(image).map([&](Image&& rows) {
        return SourcePicture { std::move(rows), decoded->isRegion, attachments.orientation,
            std::move(attachments.properties) };
    });
}

} // namespace vellumine::confined
