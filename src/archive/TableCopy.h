// Copying every table of one archive into another, whatever the tables are and on either database.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace kalvo::archive {

class Archive;

// A table as the database describes it: its columns in their order, and the tables it refers to.
struct TableShape {
    QString name;
    QStringList columns;
    QStringList types; // the database's own type names, lower case ("timestamp without time zone", "text")
    QStringList references;
};

// The archive's tables (schema_version included) in an order in which every table comes after the
// tables it refers to. Taken from the database itself, so that a newer schema needs no change here.
QList<TableShape> ArchiveTables(Archive &archive);

// Rows of `table` in `archive`.
qint64 CountRows(Archive &archive, const QString &table);

// Replaces the rows of every table of `to` but schema_version with those of `from`: the columns
// both have, copied by name; a batch at a time, so memory does not grow with the archive. Run it in
// a transaction of `to`; a PostgreSQL `from` must be in a transaction too (its rows are read through
// a cursor). `progress` gets the rows copied and the rows in all. A PostgreSQL `to` has its id
// sequences set past the ids copied. Returns the rows copied.
qint64 CopyTables(Archive &from, Archive &to, const std::function<void(qint64, qint64)> &progress);

} // namespace kalvo::archive
