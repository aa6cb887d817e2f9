#include "update/PageVersion.h"

#include <QRegularExpression>
#include <QStringDecoder>

namespace vellumine {
namespace {

std::optional<QString> decodeUtf8(const QByteArray& bytes)
{
    // Stateless: a sequence that the end of the page cuts off is an error as well.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return text;
}

std::optional<QString> firstGroup(const QString& pattern, const QString& text)
{
    // Blanks are all that Unicode counts as white space, such as the no-break space.
    const QRegularExpression expression(pattern, QRegularExpression::UseUnicodePropertiesOption);
    const QRegularExpressionMatch match = expression.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return match.captured(1);
}

} // namespace

std::optional<QString> versionOnPage(const QByteArray& page)
{
    const std::optional<QString> text = decodeUtf8(page);
    if (!text) {
        return std::nullopt;
    }
    if (auto version
        = firstGroup(QStringLiteral(R"lit("softwareVersion"\s*:\s*"([^"]+)")lit"), *text)) {
        return version;
    }
    return firstGroup(QStringLiteral(R"(Version\s+([^<]+?)\s+·)"), *text);
}

} // namespace vellumine
