#include "cli/Terminal.h"

#include "platform/FilePath.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>

namespace vellumine::cli {

namespace {

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

/// Whether the interruption has come.
bool isInterrupted(int interruption)
{
    pollfd asked { .fd = interruption, .events = POLLIN, .revents = 0 };
    return ::poll(&asked, 1, 0) > 0;
}

/// Whether there is something to read before the interruption comes. A terminal gives whole lines.
bool waitForLine(std::FILE* input, int interruption)
{
    std::array<pollfd, 2> waiting {
        pollfd { .fd = ::fileno(input), .events = POLLIN, .revents = 0 },
        pollfd { .fd = interruption, .events = POLLIN, .revents = 0 },
    };
    while (::poll(waiting.data(), waiting.size(), -1) < 0 && errno == EINTR) { }
    return waiting[1].revents == 0;
}

/// The answer to the question, read from `input`. Nobody is asked after the interruption.
QByteArray answer(std::FILE* input, std::FILE* output, const QString& question, int interruption)
{
    if (isInterrupted(interruption)) {
        return {};
    }
    std::fputs(question.toUtf8().constData(), output);
    std::fflush(output);
    QByteArray line;
    if (!waitForLine(input, interruption)) {
        std::fputc('\n', output);
        return line;
    }
    for (int c = std::fgetc(input); c != EOF && c != '\n'; c = std::fgetc(input)) {
        line.append(static_cast<char>(c));
    }
    return line.trimmed().toLower();
}

} // namespace

QString printable(const QString& text)
{
    QString shown;
    for (const QChar c : text) {
        if (c == u'\n') {
            shown += QStringLiteral("\\n");
        } else if (c == u'\t') {
            shown += QStringLiteral("\\t");
        } else if (c.category() == QChar::Other_Control) {
            shown += QStringLiteral("\\x%1").arg(int { c.unicode() }, 2, 16, QChar(u'0'));
        } else {
            shown += c;
        }
    }
    return shown;
}

OverwriteDecision askOnTerminal(const QUrl& url, int interruption)
{
    const QString question
        = QStringLiteral("Replace %1? A file with this name already exists. [y/N] ")
              .arg(printable(platform::lastPathComponent(url)));
    QByteArray text;
    // The terminal itself, so that the question is seen and answered when the streams are
    // redirected.
    const Stream terminalInput(std::fopen("/dev/tty", "re"));
    const Stream terminalOutput(std::fopen("/dev/tty", "we"));
    if (terminalInput && terminalOutput) {
        text = answer(terminalInput.get(), terminalOutput.get(), question, interruption);
    } else if (::isatty(STDIN_FILENO) != 0) {
        text = answer(stdin, stderr, question, interruption);
    }
    return text == "y" || text == "yes" ? OverwriteDecision::replace : OverwriteDecision::skip;
}

} // namespace vellumine::cli
