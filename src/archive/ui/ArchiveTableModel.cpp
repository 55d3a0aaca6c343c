// The archive's records as a table that fetches a page at a time while the list is scrolled.
#include "ArchiveTableModel.h"

#include "ArchiveCaptions.h"

#include "archive/ArchiveQueries.h"
#include "archive/ArchiveSession.h"

#include <QBrush>

namespace kalvo::archive::ui {

namespace {

enum Column { kNumber, kTested, kDevice, kType, kRegulation, kVerdict, kCustomer, kNextTest, kColumns };

} // namespace

ArchiveTableModel::ArchiveTableModel(ArchiveSession &session, QObject *parent)
    : QAbstractTableModel(parent), m_session(session)
{}

void ArchiveTableModel::SetLanguage(const QString &language)
{
    m_language = language;
    emit headerDataChanged(Qt::Horizontal, 0, kColumns - 1);
}

template <typename Job, typename Use> void ArchiveTableModel::Ask(Job job, Use use)
{
    m_fetching = true;
    const quint64 search = m_search;
    m_session.Ask(
        this, std::move(job),
        [this, search, use = std::move(use)](const auto &answer) {
            if (search != m_search)
                return;
            m_fetching = false;
            use(answer);
        },
        [this, search](const QString &message) {
            if (search != m_search)
                return;
            m_fetching = false;
            m_total = m_rows.size(); // no endless retries while the list is scrolled
            emit failed(message);
        });
}

void ArchiveTableModel::Show(const ArchiveFilter &filter)
{
    beginResetModel();
    ++m_search;
    m_filter = filter;
    m_rows.clear();
    m_total = 0;
    endResetModel();
    Ask(
        [filter](Archive &archive) {
            const qint64 total = CountRecords(archive, filter);
            return std::pair{total, ListRecords(archive, filter, kPage, 0)};
        },
        [this](const std::pair<qint64, QList<ArchivedRecord>> &first) {
            beginResetModel();
            m_total = first.first;
            m_rows = first.second;
            endResetModel();
            emit shown(m_total);
        });
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
    case kCustomer: return r.customerName;
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
    return !parent.isValid() && !m_fetching && m_rows.size() < m_total;
}

void ArchiveTableModel::fetchMore(const QModelIndex &parent)
{
    if (!canFetchMore(parent))
        return;
    Ask([filter = m_filter,
         offset = m_rows.size()](Archive &archive) { return ListRecords(archive, filter, kPage, offset); },
        [this](const QList<ArchivedRecord> &page) {
            if (page.isEmpty()) {
                m_total = m_rows.size(); // records went away since the count
                return;
            }
            const int first = static_cast<int>(m_rows.size());
            beginInsertRows({}, first, first + static_cast<int>(page.size()) - 1);
            m_rows += page;
            endInsertRows();
        });
}

} // namespace kalvo::archive::ui
