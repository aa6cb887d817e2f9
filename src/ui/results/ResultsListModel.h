#pragma once

#include "core/ProcessingResult.h"
#include "ui/results/ResultsSummaryPresenter.h"

#include <QAbstractListModel>
#include <QList>
#include <QUrl>
#include <qqmlregistration.h>

#include <functional>

namespace vellumine {

class ProcessingModel;

/// The outcomes since the start, newest first, as rows with everything that a row shows. A row's
/// texts are made when they are asked for, so that a list of thousands costs nothing until it is
/// scrolled.
class ResultsListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made beside the processing model")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int rowHeight READ rowHeight CONSTANT)
    Q_PROPERTY(int listHeight READ listHeight NOTIFY listHeightChanged)
    Q_PROPERTY(vellumine::ResultsSummaryPresenter* summary READ summary CONSTANT)

public:
    enum Role : int {
        idRole = Qt::UserRole,
        fileNameRole,
        messageRole,
        isSuccessRole,
        statusSymbolRole,
        statusColorRole,
        metricsTextRole, ///< empty unless it is a success
        badgesRole, ///< a list of AuditBadgeContent, empty unless it is a success with an audit
        hasOutputRole, ///< whether there is a file to compare and to reveal
        spokenTextRole, ///< the whole row in words, for a screen reader
        hasDividerRole, ///< every row but the last
    };

    /// What a row's buttons do.
    struct Actions {
        std::function<void(const QUrl& file)> reveal;
        std::function<void(const ProcessingResult& result, const QUrl& output)> compare;
    };

    explicit ResultsListModel(Actions actions, QObject* parent = nullptr);

    /// Shows what the model has, and every further result in front. Once.
    void follow(const ProcessingModel& model);

    /// Puts a result in front of all others.
    void prepend(const ProcessingResult& result);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return static_cast<int>(m_results.size()); }
    [[nodiscard]] static int rowHeight() { return 76; }
    /// Of the scrolling area: as many rows as there are, at most eight.
    [[nodiscard]] int listHeight() const;
    [[nodiscard]] ResultsSummaryPresenter* summary() { return &m_summary; }

    /// Shows the row's output in the file manager; nothing happens without one.
    Q_INVOKABLE void reveal(int row) const;
    /// Opens the row's before and after viewer; nothing happens without an output.
    Q_INVOKABLE void compare(int row) const;

Q_SIGNALS:
    void countChanged();
    void listHeightChanged();

private:
    /// The results in their order backwards, so that a new one is appended.
    [[nodiscard]] const ProcessingResult& at(int row) const;

    Actions m_actions;
    QList<ProcessingResult> m_results; ///< oldest first
    ResultsSummaryPresenter m_summary;
};

} // namespace vellumine
