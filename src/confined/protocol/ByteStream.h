#pragma once

#include "imaging/Bytes.h"

#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace vellumine::confined {

/// Puts numbers and bytes behind each other. Both ends are of one build on one machine, so numbers
/// are as the machine has them.
class ByteWriter {
public:
    template <typename Number> void number(Number value)
    {
        static_assert(std::is_arithmetic_v<Number>);
        const auto bytes = std::as_bytes(std::span(&value, 1));
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }
    void bytes(imaging::ByteSpan content)
    {
        number(std::uint64_t { content.size() });
        m_bytes.insert(m_bytes.end(), content.begin(), content.end());
    }
    void text(std::string_view content) { bytes(std::as_bytes(std::span(content))); }

    [[nodiscard]] imaging::ByteBuffer take() && { return std::move(m_bytes); }

private:
    imaging::ByteBuffer m_bytes;
};

/// Takes them apart again. Whoever wrote them may be hostile: what does not lie inside reads as
/// zero or empty, and isWhole() is false from then on.
class ByteReader {
public:
    explicit ByteReader(imaging::ByteSpan bytes)
        : m_rest(bytes)
    {
    }

    template <typename Number> Number number()
    {
        static_assert(std::is_arithmetic_v<Number> && !std::is_same_v<Number, bool>);
        const imaging::ByteSpan content = next(sizeof(Number));
        Number value {};
        if (!content.empty()) {
            std::memcpy(&value, content.data(), sizeof(Number));
        }
        return value;
    }
    imaging::ByteSpan bytes() { return next(number<std::uint64_t>()); }
    std::string text()
    {
        const imaging::ByteSpan content = bytes();
        return { reinterpret_cast<const char*>(content.data()), content.size() };
    }

    /// Whether everything that was read was there.
    [[nodiscard]] bool isWhole() const { return m_isWhole; }
    /// Whether nothing else is, either.
    [[nodiscard]] bool isAtTheEnd() const { return m_isWhole && m_rest.empty(); }

private:
    imaging::ByteSpan next(std::uint64_t count)
    {
        if (!m_isWhole || count > m_rest.size()) {
            m_isWhole = false;
            return {};
        }
        const imaging::ByteSpan content = m_rest.first(static_cast<std::size_t>(count));
        m_rest = m_rest.subspan(content.size());
        return content;
    }

    imaging::ByteSpan m_rest;
    bool m_isWhole = true;
};

} // namespace vellumine::confined
