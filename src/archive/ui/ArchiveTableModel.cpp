// The archive's records as a table that fetches a page at a time while the list is scrolled.
#include "ArchiveTableModel.h"

#include "ArchiveCaptions.h"

#include "archive/ArchiveQueries.h"

#include <QBrush>

namespace kalvo::archive::ui {

namespace {

enum Column { kNumber, kTested, kDevice, kType, kRegulation, kVerdict, kCustomer, kNextTest, kColumns };

} // namespace

ArchiveTableModel::ArchiveTableModel(QObject *parent) : QAbstractTableModel(parent)
{}

void ArchiveTableModel::SetLanguage(const QString &language)
{
    m_language = language;
    emit headerDataChanged(Qt::Horizontal, 0, kColumns - 1);
}

void ArchiveTableModel::Show(Archive *archive, const ArchiveFilter &filter)
{
    beginResetModel();
    m_archive = archive;
    m_filter = filter;
    m_rows.clear();
    m_total = 0;
    try {
        if (m_archive) {
            m_total = CountRecords(*m_archive, m_filter);
            m_rows = ListRecords(*m_archive, m_filter, kPage, 0);
        }
    } catch (...) {
        m_total = 0;
        m_rows.clear();
        endResetModel();
        throw;
    }
    endResetModel();
}

int ArchiveTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ArchiveTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : kColumns;
}

QVariant ArchiveTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const ArchivedRecord &r = m_rows[index.row()];
    if (role == Qt::ForegroundRole && r.failed)
        return QBrush(Qt::darkRed);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case kNumber: return r.id;
    case kTested:
        return r.testedAt.isValid() ? r.testedAt.toString(QStringLiteral("yyyy-MM-dd HH:mm")) : QString();
    case kDevice: return r.deviceId;
    case kType: return r.deviceType;
    case kRegulation: return r.regulation;
    case kVerdict: return r.verdict;
    case kCustomer: return r.customer;
    case kNextTest: return r.nextTest.isValid() ? r.nextTest.toString(Qt::ISODate) : QString();
    default: return {};
    }
}

QVariant ArchiveTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const Caption titles[kColumns] = {
        Caption::ColumnNumber, Caption::ColumnTestDate, Caption::DeviceId, Caption::Type,
        Caption::Regulation,   Caption::Verdict,        Caption::Customer, Caption::ColumnNextTest};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= kColumns)
        return {};
    return CaptionText(titles[section], m_language);
}

bool ArchiveTableModel::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && m_archive && m_rows.size() < m_total;
}

void ArchiveTableModel::fetchMore(const QModelIndex &parent)
{
    if (!canFetchMore(parent))
        return;
    QList<ArchivedRecord> page;
    try {
        page = ListRecords(*m_archive, m_filter, kPage, m_rows.size());
    } catch (const ArchiveError &e) {
        m_total = m_rows.size(); // no endless retries while the list is scrolled
        emit failed(e.message());
        return;
    }
    if (page.isEmpty()) {
        m_total = m_rows.size(); // records went away since the count
        return;
    }
    const int first = static_cast<int>(m_rows.size());
    beginInsertRows({}, first, first + static_cast<int>(page.size()) - 1);
    m_rows += page;
    endInsertRows();
}

} // namespace kalvo::archive::ui
