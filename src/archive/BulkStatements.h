// Statements that write many rows at once, for imports into either database.
#pragma once

#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <map>

namespace kalvo::archive {

class Archive;

// Rows a statement writes at most: one round trip to a server for many rows, and fewer statements
// for SQLite to step through (28 values a row stay far below either database's limit).
constexpr int kRowsPerStatement = 64;

// The prepared statements of one shape, by their number of rows, made when first needed and kept.
// In `sql`, %1 stands for the rows of `columns` values each.
class BulkStatements {
public:
    BulkStatements(Archive &archive, const QString &sql, int columns);
    // The statement for `rows` rows (1..kRowsPerStatement), to be bound from its first value.
    QSqlQuery &ForRows(int rows);
    // Binds the next value of the statement ForRows() returned last.
    void Bind(const QVariant &value);

private:
    Archive &m_archive;
    QString m_sql;
    int m_columns;
    QSqlQuery *m_current = nullptr;
    int m_bound = 0;
    std::map<int, QSqlQuery> m_prepared;
};

} // namespace kalvo::archive
