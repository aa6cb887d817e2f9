#pragma once

#include <QByteArray>

namespace vellumine::cli {

/// Standard output, seen at once by whoever reads it. After the first text that could not be
/// written there is none: what arrived is the beginning of all, and standard error says, once, why
/// it is no more.
class StandardOutput {
public:
    /// Whether the text could be written.
    bool print(const QByteArray& text);

    /// Whether all so far could be written.
    [[nodiscard]] bool isWhole() const { return m_isWhole; }

private:
    bool m_isWhole = true;
};

} // namespace vellumine::cli
