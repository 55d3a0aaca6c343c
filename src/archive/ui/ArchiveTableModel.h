// The archive's records as a table that fetches a page at a time while the list is scrolled.
#pragma once

#include "archive/ArchiveTypes.h"

#include <QAbstractTableModel>
#include <QList>

namespace kalvo::archive {
class Archive;
}

namespace kalvo::archive::ui {

class ArchiveTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kPage = 200;

    explicit ArchiveTableModel(QObject *parent = nullptr);

    // Shows the records `filter` finds in `archive` (none when it is null), the first page at once.
    // Throws ArchiveError when the archive fails; the table is then empty.
    void Show(Archive *archive, const ArchiveFilter &filter);
    // The column titles in `language` (the language table's names).
    void SetLanguage(const QString &language);
    qint64 total() const { return m_total; }
    // The record of a row that has been fetched.
    const ArchivedRecord &record(int row) const { return m_rows.at(row); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

signals:
    // A page could not be fetched (the message says why); the rows fetched before stay.
    void failed(const QString &message);

private:
    QString m_language;
    Archive *m_archive = nullptr;
    ArchiveFilter m_filter;
    QList<ArchivedRecord> m_rows;
    qint64 m_total = 0;
};

} // namespace kalvo::archive::ui
