// Copying every table of one archive into another, whatever the tables are and on either database.
#include "TableCopy.h"

#include "Archive.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <algorithm>
#include <map>

namespace kalvo::archive {

namespace {

constexpr int kBatchRows = 500;
const QString kVersionTable = QStringLiteral("schema_version");

QString Quoted(const QString &name)
{
    return QLatin1Char('"') + QString(name).replace(QLatin1Char('"'), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

QStringList Column(Archive &archive, const QString &sql, const QString &table, QStringList *second = nullptr)
{
    QStringList values;
    QSqlQuery query = table.isNull() ? archive.Exec(sql) : archive.Exec(sql, {table});
    while (archive.Next(query)) {
        values << query.value(0).toString();
        if (second)
            *second << query.value(1).toString().toLower();
    }
    return values;
}

TableShape Describe(Archive &archive, const QString &table)
{
    TableShape shape{table, {}, {}, {}};
    if (archive.isPostgres()) {
        shape.columns = Column(archive,
                               QStringLiteral("SELECT column_name, data_type FROM information_schema.columns "
                                              "WHERE table_schema = current_schema() AND table_name = ? "
                                              "ORDER BY ordinal_position"),
                               table, &shape.types);
        shape.references = Column(
            archive,
            QStringLiteral("SELECT DISTINCT target.table_name FROM information_schema.table_constraints c "
                           "JOIN information_schema.constraint_column_usage target "
                           "ON target.constraint_schema = c.constraint_schema "
                           "AND target.constraint_name = c.constraint_name "
                           "WHERE c.constraint_type = 'FOREIGN KEY' AND c.table_schema = current_schema() "
                           "AND c.table_name = ?"),
            table);
    } else {
        shape.columns =
            Column(archive, QStringLiteral("SELECT name, type FROM pragma_table_info(?) ORDER BY cid"), table,
                   &shape.types);
        shape.references = Column(
            archive, QStringLiteral("SELECT DISTINCT \"table\" FROM pragma_foreign_key_list(?)"), table);
    }
    shape.references.removeAll(table);
    return shape;
}

// A value as the other database keeps it: PostgreSQL hands out dates and times, SQLite keeps text.
QVariant Portable(const QVariant &value, const QString &type)
{
    if (value.isNull())
        return value;
    if (type.startsWith(QLatin1String("timestamp")))
        return TimestampValue(TimestampFrom(value));
    if (type == QLatin1String("date"))
        return DateValue(DateFrom(value));
    return value;
}

// Feeds `row` every row of `table`'s `columns`, in batches.
void ForEachRow(Archive &archive, const QString &table, const QStringList &columns,
                const std::function<void(const QSqlQuery &)> &row)
{
    QStringList quoted;
    for (const QString &column : columns)
        quoted << Quoted(column);
    const QString select =
        QStringLiteral("SELECT %1 FROM %2").arg(quoted.join(QLatin1String(", ")), Quoted(table));
    if (!archive.isPostgres()) {
        // SQLite hands over a row at a time as it is stepped through.
        QSqlQuery query = archive.Exec(select);
        while (archive.Next(query))
            row(query);
        return;
    }
    // The PostgreSQL driver would take the whole result into memory; a cursor gives it in batches.
    archive.Exec(QStringLiteral("DECLARE kalvo_copy NO SCROLL CURSOR FOR ") + select);
    for (;;) {
        QSqlQuery batch = archive.Exec(QStringLiteral("FETCH FORWARD %1 FROM kalvo_copy").arg(kBatchRows));
        int rows = 0;
        while (archive.Next(batch)) {
            row(batch);
            ++rows;
        }
        if (rows < kBatchRows)
            break;
    }
    archive.Exec(QStringLiteral("CLOSE kalvo_copy"));
}

// Rows written several a statement: one round trip to a server for each row would make a restore
// into PostgreSQL a matter of minutes.
class BatchInsert {
public:
    BatchInsert(Archive &to, const QString &table, const QStringList &quotedColumns)
        : m_to(to), m_table(table), m_columns(quotedColumns),
          // Within the 999 values a statement that every SQLite takes.
          m_rowsPerStatement(std::max<qsizetype>(1, kMostValues / quotedColumns.size()))
    {}
    void Add(QVariantList row)
    {
        m_rows.append(std::move(row));
        if (m_rows.size() == m_rowsPerStatement)
            Flush();
    }
    void Flush()
    {
        if (m_rows.isEmpty())
            return;
        QSqlQuery &insert = ForRows(m_rows.size());
        int i = 0;
        for (const QVariantList &row : std::as_const(m_rows))
            for (const QVariant &value : row)
                insert.bindValue(i++, value);
        m_to.Run(insert);
        m_rows.clear();
    }

private:
    static constexpr qsizetype kMostValues = 900;
    QSqlQuery &ForRows(qsizetype rows)
    {
        auto it = m_prepared.find(rows);
        if (it != m_prepared.end())
            return it->second;
        const QString marks = QLatin1Char('(') +
                              QStringList(m_columns.size(), QStringLiteral("?")).join(QLatin1Char(',')) +
                              QLatin1Char(')');
        const QString sql = QStringLiteral("INSERT INTO %1 (%2) VALUES %3")
                                .arg(Quoted(m_table), m_columns.join(QLatin1String(", ")),
                                     QStringList(rows, marks).join(QLatin1Char(',')));
        return m_prepared.emplace(rows, m_to.Prepare(sql)).first->second;
    }

    Archive &m_to;
    QString m_table;
    QStringList m_columns;
    qsizetype m_rowsPerStatement;
    QList<QVariantList> m_rows;
    std::map<qsizetype, QSqlQuery> m_prepared;
};

// PostgreSQL hands out ids from sequences that know nothing of ids written by hand.
void SetSequencesPastCopiedIds(Archive &to, const QString &table)
{
    QSqlQuery serial = to.Exec(QStringLiteral("SELECT column_name FROM information_schema.columns "
                                              "WHERE table_schema = current_schema() AND table_name = ? "
                                              "AND (column_default LIKE 'nextval(%' OR is_identity = 'YES')"),
                               {table});
    QStringList columns;
    while (to.Next(serial))
        columns << serial.value(0).toString();
    for (const QString &column : columns)
        to.Exec(QStringLiteral("SELECT setval(pg_get_serial_sequence(?, ?), COALESCE(max(%1), 0) + 1, false) "
                               "FROM %2")
                    .arg(Quoted(column), Quoted(table)),
                {Quoted(table), column});
}

} // namespace

QList<TableShape> ArchiveTables(Archive &archive)
{
    const QStringList names =
        archive.isPostgres()
            ? Column(archive,
                     QStringLiteral("SELECT table_name FROM information_schema.tables "
                                    "WHERE table_schema = current_schema() AND table_type = 'BASE TABLE' "
                                    "ORDER BY table_name"),
                     QString())
            : Column(archive,
                     QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' "
                                    "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name"),
                     QString());
    QList<TableShape> pending;
    for (const QString &name : names)
        pending << Describe(archive, name);
    // A table goes after those it refers to; one that refers in a circle keeps its place at the end.
    QList<TableShape> ordered;
    QStringList placed;
    while (!pending.isEmpty()) {
        qsizetype next = -1;
        for (qsizetype i = 0; i < pending.size() && next < 0; ++i) {
            bool ready = true;
            for (const QString &target : pending[i].references)
                ready = ready && (placed.contains(target) || !names.contains(target));
            if (ready)
                next = i;
        }
        if (next < 0)
            next = 0;
        placed << pending[next].name;
        ordered << pending.takeAt(next);
    }
    return ordered;
}

qint64 CountRows(Archive &archive, const QString &table)
{
    QSqlQuery query = archive.Exec(QStringLiteral("SELECT count(*) FROM %1").arg(Quoted(table)));
    return archive.Next(query) ? query.value(0).toLongLong() : 0;
}

qint64 CopyTables(Archive &from, Archive &to, const std::function<void(qint64, qint64)> &progress)
{
    // The tables both have but schema_version, as (source, target) in the target's order; a table
    // newer than the copy stays as the migrations made it.
    const QList<TableShape> sources = ArchiveTables(from);
    QList<std::pair<TableShape, TableShape>> tables;
    for (const TableShape &target : ArchiveTables(to)) {
        const auto source = std::find_if(sources.cbegin(), sources.cend(),
                                         [&](const TableShape &s) { return s.name == target.name; });
        if (target.name != kVersionTable && source != sources.cend())
            tables.append({*source, target});
    }

    // What the target holds (the intervals its migrations put there) gives way to the copy's; those
    // that refer to others go first.
    for (auto it = tables.crbegin(); it != tables.crend(); ++it)
        to.Exec(QStringLiteral("DELETE FROM %1").arg(Quoted(it->second.name)));

    qint64 total = 0;
    for (const auto &[source, target] : std::as_const(tables))
        total += CountRows(from, source.name);
    qint64 done = 0;
    if (progress)
        progress(0, total);

    for (const auto &[source, target] : std::as_const(tables)) {
        QStringList columns, types, quoted;
        for (qsizetype i = 0; i < source.columns.size(); ++i)
            if (target.columns.contains(source.columns[i])) {
                columns << source.columns[i];
                types << source.types[i];
                quoted << Quoted(source.columns[i]);
            }
        if (columns.isEmpty())
            continue;
        BatchInsert insert(to, target.name, quoted);
        ForEachRow(from, source.name, columns, [&](const QSqlQuery &row) {
            QVariantList values;
            values.reserve(columns.size());
            for (int i = 0; i < columns.size(); ++i)
                values.append(Portable(row.value(i), types[i]));
            insert.Add(std::move(values));
            if (++done % kBatchRows == 0 && progress)
                progress(done, total);
        });
        insert.Flush();
        if (to.isPostgres())
            SetSequencesPastCopiedIds(to, target.name);
    }
    if (progress)
        progress(done, total);
    return done;
}

} // namespace kalvo::archive
