#pragma once

#include "imaging/Bytes.h"

#include <optional>
#include <string>
#include <vector>

namespace vellumine::imaging {

/// What a text of a PNG file has beside it where it is written in Unicode.
struct InternationalKeyword {
    std::string language {}; ///< RFC 3066; may be empty
    std::string keyword {}; ///< in that language, UTF-8; may be empty

    friend bool operator==(const InternationalKeyword&, const InternationalKeyword&) = default;
};

/// A text that files of one format alone have a place for: a comment of a JPEG or a GIF file, or
/// one of the texts of a PNG file.
struct FileText {
    std::string keyword {}; ///< Latin-1; a comment has none
    /// As it is stored, but not compressed: an international text is UTF-8, another one of a PNG
    /// file Latin-1, and a comment whatever its writer liked.
    ByteBuffer content {};
    std::optional<InternationalKeyword> international {};

    friend bool operator==(const FileText&, const FileText&) = default;
};

/// All of them in one file, in their order, within bounds that no honest file comes near.
class FileTexts {
public:
    static constexpr std::size_t mostTexts = 1000;
    static constexpr std::size_t mostBytes = std::size_t { 8 } << 20U; ///< keywords included

    /// Adds the text where there is room for it; else it is left out, and the answer is false.
    bool add(FileText text);

    [[nodiscard]] bool empty() const { return m_texts.empty(); }
    [[nodiscard]] bool isFull() const { return m_texts.size() == mostTexts; }
    [[nodiscard]] const std::vector<FileText>& list() const { return m_texts; }

    friend bool operator==(const FileTexts&, const FileTexts&) = default;

private:
    std::vector<FileText> m_texts;
    std::size_t m_bytes = 0;
};

} // namespace vellumine::imaging
