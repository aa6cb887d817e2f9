#include "ui/fakes/ResultsFixture.h"

#include "core/ImageOptimizerError.h"
#include "platform/FilePath.h"

#include <QRandomGenerator>

namespace vellumine {
namespace {

QUrl pictureUrl(const QString& name)
{
    return platform::fileUrl(QStringLiteral("/pictures/") + name);
}

QSizeF sizeAt(const QVariantList& sizes, qsizetype first, QSizeF otherwise)
{
    return sizes.size() < first + 2
        ? otherwise
        : QSizeF(sizes.at(first).toDouble(), sizes.at(first + 1).toDouble());
}

ConversionAudit auditOf(const QVariantMap& details)
{
    const QVariantList sizes = details.value(QStringLiteral("sizes")).toList();
    const QStringList formats = details.value(QStringLiteral("formats")).toStringList();
    const QString colour
        = details.value(QStringLiteral("colour"), QStringLiteral("sRGB")).toString();
    return {
        .inputDimensions = sizeAt(sizes, 0, { 4032, 3024 }),
        .outputDimensions = sizeAt(sizes, 2, { 2560, 1920 }),
        .inputFormat = formats.value(0, QStringLiteral("JPEG")),
        .outputFormat = formats.value(1, QStringLiteral("WebP Lossy")),
        .metadataRemoved = !details.value(QStringLiteral("metadataKept")).toBool(),
        .colorOptimized = colour == QStringLiteral("sRGB"),
        .colorManagementRemoved = colour == QStringLiteral("removed"),
        .sourceHasAlpha = details.value(QStringLiteral("alpha")).toBool(),
        .outputSupportsAlpha = details.value(QStringLiteral("alphaKept")).toBool(),
    };
}

} // namespace

ResultsFixture::ResultsFixture(QObject* parent)
    : QObject(parent)
    , m_model({
          .reveal =
              [this](const QUrl& file) {
                  m_revealed.append(platform::lastPathComponent(file));
                  Q_EMIT acted();
              },
          .compare =
              [this](const ProcessingResult& result, const QUrl& output) {
                  m_compared.append(platform::lastPathComponent(result.sourceURL)
                      + QStringLiteral(" > ") + platform::lastPathComponent(output));
                  Q_EMIT acted();
              },
      })
{
}

void ResultsFixture::addSuccess(
    const QString& name, double originalBytes, double outputBytes, const QVariantMap& details)
{
    const auto original = static_cast<qint64>(originalBytes);
    const auto output = static_cast<qint64>(outputBytes);
    m_model.prepend({
        .id = QUuid::createUuid(),
        .sourceURL = pictureUrl(name),
        .outputURL = pictureUrl(QStringLiteral("optimized/") + name),
        .originalBytes = original,
        .outputBytes = output,
        .message = successMessage(original, output, OriginalInTrash::asWished),
        .isSuccess = true,
        .audit = auditOf(details),
        .comparisonPreview = std::nullopt,
    });
}

void ResultsFixture::addFailure(const QString& name, const QString& message)
{
    ProcessingResult result;
    result.id = QUuid::createUuid();
    result.sourceURL = pictureUrl(name);
    result.message = message;
    m_model.prepend(result);
}

void ResultsFixture::addFailureWithOutput(const QString& name, const QString& message)
{
    ProcessingResult result;
    result.id = QUuid::createUuid();
    result.sourceURL = pictureUrl(name);
    result.outputURL = pictureUrl(QStringLiteral("optimized/") + name);
    result.message = message;
    result.audit = auditOf({});
    m_model.prepend(result);
}

void ResultsFixture::addUnreadable(const QString& name)
{
    addFailure(name, errorDescription(UnreadableImage {}));
}

void ResultsFixture::addMany(int count)
{
    QRandomGenerator random(7);
    for (int number = 1; number <= count; ++number) {
        const double original = random.bounded(1'000'000) * 10.0 + 1000;
        const QString name = QStringLiteral("DSC_%1.jpg").arg(number, 5, 10, QLatin1Char('0'));
        if (number % 17 == 0) {
            addUnreadable(name);
        } else {
            addSuccess(name, original, original * random.bounded(1.1),
                { { QStringLiteral("alpha"), number % 3 == 0 },
                    { QStringLiteral("metadataKept"), number % 5 == 0 },
                    { QStringLiteral("colour"),
                        number % 4 == 0 ? QStringLiteral("kept") : QStringLiteral("sRGB") } });
        }
    }
}

} // namespace vellumine
