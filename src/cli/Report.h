#pragma once

#include "cli/CommandLine.h"
#include "cli/StandardOutput.h"
#include "core/ProcessingResult.h"

#include <cstddef>
#include <cstdio>

namespace vellumine::cli {

/// One line of text for a file: its name, what became of it, and the sizes.
[[nodiscard]] QString resultLine(const ProcessingResult& result);

/// Tells how a batch goes: results on standard output, progress on standard error where that is a
/// terminal.
class Report {
public:
    explicit Report(OutputStyle style);

    /// How many files there are, for the progress, once that is known.
    void setFileCount(std::size_t fileCount);

    /// Whether the result could be told.
    bool add(const ProcessingResult& result);
    /// The line at the end, in text style.
    void finish();

    /// Takes the progress off the terminal, for somebody else to write there, and puts it back.
    void hideProgress() const;
    void showProgress() const;

    [[nodiscard]] bool hasFailures() const { return m_failed > 0; }
    /// Whether all of the results could be told.
    [[nodiscard]] bool isWhole() const { return m_output.isWhole(); }
    [[nodiscard]] bool isEmpty() const { return m_succeeded + m_failed == 0; }

    /// What finish() says.
    [[nodiscard]] QString summary() const;

private:
    OutputStyle m_style;
    StandardOutput m_output;
    std::size_t m_fileCount = 0;
    bool m_showsProgress;
    std::size_t m_succeeded = 0;
    std::size_t m_failed = 0;
    qint64 m_originalBytes = 0;
    qint64 m_outputBytes = 0;
};

} // namespace vellumine::cli
