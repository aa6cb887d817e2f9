#include "cli/Report.h"

#include "cli/ResultJson.h"
#include "cli/Terminal.h"
#include "platform/ByteCount.h"
#include "platform/FilePath.h"

#include <QLocale>

#include <unistd.h>

#include <cstdlib>

namespace vellumine::cli {

using platform::byteCountText;

namespace {

constexpr std::size_t progressWidth = 40;

QString filesText(std::size_t count)
{
    return count == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(count);
}

} // namespace

QString resultLine(const ProcessingResult& result)
{
    QString line
        = platform::lastPathComponent(result.sourceURL) + QStringLiteral(": ") + result.message;
    if (result.outputURL) {
        line += QStringLiteral(" (%1, %2 to %3)")
                    .arg(platform::lastPathComponent(*result.outputURL),
                        byteCountText(result.originalBytes), byteCountText(result.outputBytes));
    }
    return printable(line);
}

Report::Report(OutputStyle style)
    : m_style(style)
    , m_showsProgress(::isatty(STDERR_FILENO) != 0)
{
}

void Report::setFileCount(std::size_t fileCount)
{
    m_fileCount = fileCount + m_succeeded + m_failed;
    showProgress();
}

bool Report::add(const ProcessingResult& result)
{
    if (result.isSuccess) {
        ++m_succeeded;
        m_originalBytes += result.originalBytes;
        m_outputBytes += result.outputBytes;
    } else {
        ++m_failed;
    }
    hideProgress();
    const QByteArray line
        = m_style == OutputStyle::json ? resultJson(result) : resultLine(result).toUtf8();
    const bool isWritten = m_output.print(line + '\n');
    showProgress();
    return isWritten;
}

void Report::finish()
{
    hideProgress();
    if (m_style == OutputStyle::text) {
        m_output.print(summary().toUtf8() + '\n');
    }
}

QString Report::summary() const
{
    QString text = filesText(m_succeeded) + QStringLiteral(" optimized");
    if (m_failed > 0) {
        text += QStringLiteral(", %1 failed").arg(m_failed);
    }
    const qint64 saved = m_originalBytes - m_outputBytes;
    if (m_originalBytes > 0) {
        const qint64 difference = std::abs(saved);
        const double percent
            = static_cast<double>(difference) / static_cast<double>(m_originalBytes) * 100.0;
        text += (saved < 0 ? QStringLiteral(", %1 larger (+%2%)")
                           : QStringLiteral(", %1 saved (%2%)"))
                    .arg(byteCountText(difference), QLocale().toString(percent, 'f', 1));
    }
    return text;
}

void Report::showProgress() const
{
    if (!m_showsProgress || m_fileCount == 0) {
        return;
    }
    const std::size_t done = m_succeeded + m_failed;
    const std::size_t filled = done * progressWidth / m_fileCount;
    const QByteArray bar = QByteArray(static_cast<qsizetype>(filled), '#')
                               .leftJustified(static_cast<qsizetype>(progressWidth), '.');
    std::fprintf(stderr, "\r[%s] %zu of %zu", bar.constData(), done, m_fileCount);
    std::fflush(stderr);
}

void Report::hideProgress() const
{
    if (m_showsProgress) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
    }
}

} // namespace vellumine::cli
