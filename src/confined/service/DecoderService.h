#pragma once

#include "confined/protocol/Channel.h"
#include "confined/protocol/Messages.h"
#include "imaging/SourceDecoder.h"

#include <memory>
#include <optional>
#include <variant>

namespace vellumine::confined {

/// The helper's side: opens and decodes pictures as it is asked to, one at a time.
class DecoderService {
public:
    struct Answer {
        Reply reply;
        std::optional<imaging::FileDescriptor> descriptor;
    };

    /// Answers until the other end is gone, or sends what makes no sense.
    void serve(const Channel& channel);

    /// The answer to one request; none where it has none. A request that makes no sense here
    /// (nothing is open, no descriptor came along) fails like a picture that cannot be read.
    [[nodiscard]] std::optional<Answer> answer(
        const Request& request, std::optional<imaging::FileDescriptor> descriptor);

private:
    Answer open(const OpenRequest& request, std::optional<imaging::FileDescriptor> file);
    Answer decode(const DecodeRequest& request);
    [[nodiscard]] const std::optional<imaging::Image>& picture(RowsRequest::Of which) const;
    Answer rows(const RowsRequest& request);
    [[nodiscard]] Answer planes(const PlanesRequest& request) const;
    Answer draw(const DrawRequest& request);
    Answer given(imaging::Result<imaging::Image> pixels);
    [[nodiscard]] Answer share() const;

    imaging::Limits m_limits;
    std::unique_ptr<imaging::SourceDecoder> m_decoder;
    std::optional<imaging::Image> m_picture; ///< as it is stored
    std::optional<imaging::Image> m_drawn; ///< may be fetched piece by piece
    /// What waits to be fetched.
    std::variant<std::monostate, imaging::Image, imaging::ByteBuffer> m_given;
};

} // namespace vellumine::confined
