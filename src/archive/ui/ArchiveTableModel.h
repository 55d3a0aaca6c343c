// The archive's records as a table that fetches a page at a time while the list is scrolled.
#pragma once

#include "archive/ArchiveTypes.h"

#include <QAbstractTableModel>
#include <QList>

namespace kalvo::archive {
class ArchiveSession;
}

namespace kalvo::archive::ui {

class ArchiveTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kPage = 200;

    // Asks `session` for its rows.
    explicit ArchiveTableModel(ArchiveSession &session, QObject *parent = nullptr);

    // Empties the table and asks for the records `filter` finds; `shown` follows with the first
    // page, or `failed`. An answer to an earlier search that comes in later is dropped.
    void Show(const ArchiveFilter &filter);
    // The column titles in `language` (the language table's names).
    void SetLanguage(const QString &language);
    qint64 total() const { return m_total; }
    // Counts the searches shown, so that an answer to an older one can be told apart.
    quint64 search() const { return m_search; }
    // The record of a row that has been fetched.
    const ArchivedRecord &record(int row) const { return m_rows.at(row); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

signals:
    // The first page of a search is there; `total` records match.
    void shown(qint64 total);
    // A search or a page failed (the message says why); the rows fetched before stay.
    void failed(const QString &message);

private:
    // Runs `use` with the answer to `job` only when no other search has begun since.
    template <typename Job, typename Use> void Ask(Job job, Use use);

    ArchiveSession &m_session;
    QString m_language;
    ArchiveFilter m_filter;
    QList<ArchivedRecord> m_rows;
    qint64 m_total = 0;
    quint64 m_search = 0; // counts searches, to know an answer to an old one
    bool m_fetching = false;
};

} // namespace kalvo::archive::ui
