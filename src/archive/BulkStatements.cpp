// Statements that write many rows at once, for imports into either database.
#include "BulkStatements.h"

#include "Archive.h"

#include <QStringList>

namespace kalvo::archive {

namespace {

constexpr int kMostColumns = 32;

// Placeholder names ":p0", ":p1", ..., made once. Qt formats such a name afresh for every value
// bound by position, which took a fifth of an import's time.
const QStringList &PlaceholderNames()
{
    static const QStringList names = [] {
        QStringList list;
        for (int i = 0; i < kRowsPerStatement * kMostColumns; ++i)
            list.append(QStringLiteral(":p%1").arg(i));
        return list;
    }();
    return names;
}

// `sql` with its %1 replaced by `rows` groups of `columns` placeholders.
QString MultiRow(const QString &sql, int rows, int columns)
{
    QStringList groups;
    for (int row = 0; row < rows; ++row)
        groups.append(QLatin1Char('(') +
                      PlaceholderNames().mid(row * columns, columns).join(QLatin1Char(',')) +
                      QLatin1Char(')'));
    return QString(sql).replace(QLatin1String("%1"), groups.join(QLatin1Char(',')));
}

} // namespace

BulkStatements::BulkStatements(Archive &archive, const QString &sql, int columns)
    : m_archive(archive), m_sql(sql), m_columns(columns)
{
    Q_ASSERT(columns <= kMostColumns);
}

QSqlQuery &BulkStatements::ForRows(int rows)
{
    Q_ASSERT(rows >= 1 && rows <= kRowsPerStatement);
    auto it = m_prepared.find(rows);
    if (it == m_prepared.end())
        it = m_prepared.emplace(rows, m_archive.Prepare(MultiRow(m_sql, rows, m_columns))).first;
    m_current = &it->second;
    m_bound = 0;
    return it->second;
}

void BulkStatements::Bind(const QVariant &value)
{
    m_current->bindValue(PlaceholderNames()[m_bound++], value);
}

} // namespace kalvo::archive
