#include "ui/results/ResultsListModel.h"

#include "batch/ProcessingModel.h"
#include "platform/FilePath.h"
#include "ui/results/AuditBadges.h"
#include "ui/results/ResultTexts.h"
#include "ui/theme/Palette.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace vellumine {
namespace {

constexpr int maximumVisibleRows = 8;

/// Names may hold anything but a slash. Breaks of a line would show as such.
QString fileName(const ProcessingResult& result)
{
    QString name = platform::lastPathComponent(result.sourceURL);
    for (QChar& character : name) {
        if (character.category() == QChar::Other_Control || character == QChar::LineSeparator
            || character == QChar::ParagraphSeparator) {
            character = QLatin1Char(' ');
        }
    }
    return name;
}

QString metricsText(const ProcessingResult& result)
{
    return result.isSuccess ? results::metrics(result) : QString();
}

QList<AuditBadgeContent> badges(const ProcessingResult& result)
{
    return result.isSuccess && result.audit ? auditBadges(*result.audit)
                                            : QList<AuditBadgeContent>();
}

QString spokenText(const ProcessingResult& result)
{
    QStringList parts { fileName(result), result.message };
    if (result.isSuccess) {
        parts.append(metricsText(result));
        for (const AuditBadgeContent& badge : badges(result)) {
            parts.append(badge.text);
        }
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace

ResultsListModel::ResultsListModel(Actions actions, QObject* parent)
    : QAbstractListModel(parent)
    , m_actions(std::move(actions))
{
}

void ResultsListModel::follow(const ProcessingModel& model)
{
    const QList<ProcessingResult>& results = model.results();
    std::for_each(results.rbegin(), results.rend(),
        [this](const ProcessingResult& result) { prepend(result); });
    connect(&model, &ProcessingModel::resultInserted, this, &ResultsListModel::prepend);
}

void ResultsListModel::prepend(const ProcessingResult& result)
{
    const int heightBefore = listHeight();
    beginInsertRows({}, 0, 0);
    m_results.append(result);
    endInsertRows();
    m_summary.add(result);
    Q_EMIT countChanged();
    if (listHeight() != heightBefore) {
        Q_EMIT listHeightChanged();
    }
}

const ProcessingResult& ResultsListModel::at(int row) const
{
    return m_results.at(m_results.size() - 1 - row);
}

int ResultsListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant ResultsListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const ProcessingResult& result = at(index.row());
    switch (role) {
    case idRole:
        return result.id;
    case Qt::DisplayRole:
    case fileNameRole:
        return fileName(result);
    case messageRole:
        return result.message;
    case isSuccessRole:
        return result.isSuccess;
    case statusSymbolRole:
        return result.isSuccess ? QStringLiteral("checkmark.circle.fill")
                                : QStringLiteral("exclamationmark.triangle.fill");
    case statusColorRole:
        return (result.isSuccess ? palette::sage : palette::copper).toQColor();
    case metricsTextRole:
        return metricsText(result);
    case badgesRole:
        return QVariant::fromValue(badges(result));
    case hasOutputRole:
        return result.outputURL.has_value();
    case Qt::AccessibleTextRole:
    case spokenTextRole:
        return spokenText(result);
    case hasDividerRole:
        return index.row() != count() - 1;
    default:
        return {};
    }
}

QHash<int, QByteArray> ResultsListModel::roleNames() const
{
    return {
        { idRole, "resultId" },
        { fileNameRole, "fileName" },
        { messageRole, "message" },
        { isSuccessRole, "isSuccess" },
        { statusSymbolRole, "statusSymbol" },
        { statusColorRole, "statusColor" },
        { metricsTextRole, "metricsText" },
        { badgesRole, "badges" },
        { hasOutputRole, "hasOutput" },
        { spokenTextRole, "spokenText" },
        { hasDividerRole, "hasDivider" },
    };
}

int ResultsListModel::listHeight() const
{
    return std::min(count(), maximumVisibleRows) * rowHeight();
}

void ResultsListModel::reveal(int row) const
{
    if (row >= 0 && row < count() && at(row).outputURL) {
        m_actions.reveal(*at(row).outputURL);
    }
}

void ResultsListModel::compare(int row) const
{
    if (row >= 0 && row < count() && at(row).outputURL) {
        m_actions.compare(at(row), *at(row).outputURL);
    }
}

} // namespace vellumine
