// Finding records in the archive: searches, a device's history, what is due, the bytes of one.
#include "ArchiveQueries.h"

#include "Archive.h"
#include "Customers.h"
#include "DeviceData.h"
#include "RecordImport.h"
#include "RetestIntervals.h"

#include <QSqlQuery>
#include <QVariantList>

namespace kalvo::archive {

namespace {

const char kColumns[] =
    "r.id, r.sha256, r.tester_name, r.device_id, r.device_type, r.tested_at, r.regulation, r.failed,"
    " r.protection_class, r.applied_part, r.accessory_kind, r.accessory_type, r.maker, r.accessory_device_id,"
    " r.customer, r.street, r.post_code, r.town, r.source_tester, r.source_serial, r.source_accessory,"
    " r.source_file, r.imported_at, d.next_test, r.customer_id, c.name";

constexpr int kVerifyBatch = 500;

struct Where {
    QStringList conditions;
    QVariantList values;
    bool onRecords = false; // a condition on the records' columns, not only on the devices
    QString Sql() const
    {
        return conditions.isEmpty() ? QString()
                                    : QStringLiteral(" WHERE ") + conditions.join(QLatin1String(" AND "));
    }
};

// `text` anywhere in a column; the LIKE wildcards in it stand for themselves.
QString Containing(const QString &text)
{
    QString escaped = text.toLower();
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    escaped.replace(QLatin1Char('%'), QLatin1String("\\%"));
    escaped.replace(QLatin1Char('_'), QLatin1String("\\_"));
    return QLatin1Char('%') + escaped + QLatin1Char('%');
}

Where WhereFor(const ArchiveFilter &filter)
{
    Where where;
    const auto add = [&where](const char *condition, const QVariant &value) {
        where.conditions << QString::fromLatin1(condition);
        where.values << value;
        where.onRecords = where.onRecords || condition[0] == 'r';
    };
    if (!filter.deviceId.isEmpty())
        add("r.device_id = ?", filter.deviceId);
    if (!filter.type.isEmpty())
        add("r.type_key LIKE ? ESCAPE '\\'", Containing(filter.type));
    if (!filter.customer.isEmpty())
        add("r.customer_key LIKE ? ESCAPE '\\'", Containing(filter.customer));
    if (!filter.customerName.isEmpty())
        add(filter.dueBefore.isValid() ? "d.customer_id = (SELECT id FROM customers WHERE name = ?)"
                                       : "r.customer_id = (SELECT id FROM customers WHERE name = ?)",
            CustomerName(filter.customerName));
    if (!filter.text.isEmpty())
        add("r.search_key LIKE ? ESCAPE '\\'", Containing(filter.text));
    if (filter.failed)
        add("r.failed = ?", *filter.failed ? 1 : 0);
    if (!filter.regulation.isEmpty())
        add("r.regulation = ?", filter.regulation);
    if (filter.from.isValid())
        add("r.tested_at >= ?", TimestampValue(filter.from.startOfDay(Qt::UTC)));
    if (filter.to.isValid())
        add("r.tested_at < ?", TimestampValue(filter.to.addDays(1).startOfDay(Qt::UTC)));
    if (filter.dueBefore.isValid()) {
        add("d.next_test < ?", DateValue(filter.dueBefore));
        where.conditions << QStringLiteral("d.retired = 0 AND d.out_of_service = 0");
    }
    return where;
}

// A due list starts from the devices (their next test is indexed) and takes each one's latest
// record; every other search starts from the records.
QString FromSql(const ArchiveFilter &filter)
{
    return filter.dueBefore.isValid()
               ? QStringLiteral(" FROM devices d JOIN records r ON r.id = d.last_record_id"
                                " JOIN customers c ON c.id = r.customer_id")
               : QStringLiteral(" FROM records r LEFT JOIN devices d ON d.customer_id = r.customer_id AND"
                                " d.device_id = r.device_id JOIN customers c ON c.id = r.customer_id");
}

QString SelectSql(const ArchiveFilter &filter, const Where &where, int limit, qint64 offset)
{
    QString sql = QStringLiteral("SELECT ") + QLatin1String(kColumns) + FromSql(filter) + where.Sql();
    sql += filter.dueBefore.isValid() ? QStringLiteral(" ORDER BY d.next_test, r.id")
                                      : QStringLiteral(" ORDER BY r.tested_at DESC NULLS LAST, r.id DESC");
    if (limit > 0)
        sql += QStringLiteral(" LIMIT %1 OFFSET %2").arg(limit).arg(offset);
    return sql;
}

QSqlQuery RunWhere(Archive &archive, const QString &sql, const QVariantList &values)
{
    QSqlQuery query = archive.Prepare(sql);
    for (qsizetype i = 0; i < values.size(); ++i)
        query.bindValue(static_cast<int>(i), values[i]);
    archive.Run(query);
    return query;
}

ArchivedRecord RecordFromRow(const QSqlQuery &q)
{
    ArchivedRecord r;
    r.id = q.value(0).toLongLong();
    r.sha256 = q.value(1).toString().toLatin1();
    r.testerName = q.value(2).toString();
    r.deviceId = q.value(3).toString();
    r.deviceType = q.value(4).toString();
    r.testedAt = TimestampFrom(q.value(5));
    r.regulation = q.value(6).toString();
    r.failed = q.value(7).toInt() != 0;
    r.verdict = r.failed ? QStringLiteral("nicht bestanden") : QStringLiteral("bestanden");
    r.protectionClass = q.value(8).toString();
    r.appliedPart = q.value(9).toString();
    r.accessoryKind = q.value(10).toString();
    r.accessoryType = q.value(11).toString();
    r.maker = q.value(12).toString();
    r.accessoryDeviceId = q.value(13).toString();
    r.customer = q.value(14).toString();
    r.street = q.value(15).toString();
    r.postCode = q.value(16).toString();
    r.town = q.value(17).toString();
    r.source = {q.value(18).toString(), q.value(19).toString(), q.value(20).toString(),
                q.value(21).toString(), QString()};
    r.importedAt = TimestampFrom(q.value(22));
    r.nextTest = DateFrom(q.value(23));
    r.customerId = q.value(24).toLongLong();
    r.customerName = q.value(25).toString();
    return r;
}

DueDevice DueFrom(const DeviceData &d, const RetestIntervals &intervals)
{
    return {d.key.customerId, d.customerName,
            d.key.deviceId,   d.recordType,
            d.regulation,     d.lastTest,
            d.nextTest,       d.intervalMonths.value_or(intervals.MonthsFor({}, d.regulation)),
            d.lastRecordId};
}

} // namespace

void ForEachRecordIn(Archive &archive, const ArchiveFilter &filter, int limit, qint64 offset,
                     const std::function<void(const ArchivedRecord &)> &use)
{
    const Where where = WhereFor(filter);
    QSqlQuery query = RunWhere(archive, SelectSql(filter, where, limit, offset), where.values);
    while (archive.Next(query))
        use(RecordFromRow(query));
}

QList<ArchivedRecord> ListRecords(Archive &archive, const ArchiveFilter &filter, int limit, qint64 offset)
{
    QList<ArchivedRecord> list;
    ForEachRecordIn(archive, filter, limit, offset, [&list](const ArchivedRecord &r) { list.append(r); });
    return list;
}

void ForEachRecord(Archive &archive, const ArchiveFilter &filter,
                   const std::function<void(const ArchivedRecord &)> &use)
{
    ForEachRecordIn(archive, filter, 0, 0, use);
}

qint64 CountRecords(Archive &archive, const ArchiveFilter &filter)
{
    const Where where = WhereFor(filter);
    // Counting due devices needs no record: each device has exactly one latest. Counting records
    // needs no device: a record has at most one (a device is one ID-Nr at one customer).
    const QString from = !filter.dueBefore.isValid() ? QStringLiteral(" FROM records r")
                         : where.onRecords           ? FromSql(filter)
                                                     : QStringLiteral(" FROM devices d");
    QSqlQuery query = RunWhere(archive, QStringLiteral("SELECT count(*)") + from + where.Sql(), where.values);
    return archive.Next(query) ? query.value(0).toLongLong() : 0;
}

std::optional<StoredRecord> FetchRecord(Archive &archive, qint64 id)
{
    QSqlQuery query = archive.Exec(
        QStringLiteral("SELECT %1, r.raw%2 WHERE r.id = ?").arg(QLatin1String(kColumns), FromSql({})), {id});
    if (!archive.Next(query))
        return std::nullopt;
    return StoredRecord{RecordFromRow(query), query.value(26).toByteArray()};
}

QList<DueDevice> DueDevices(Archive &archive, const QDate &before, int limit, const QString &customer)
{
    const RetestIntervals intervals = LoadRegulationIntervals(archive);
    QString where = QStringLiteral("WHERE d.next_test < ? AND d.retired = 0 AND d.out_of_service = 0");
    if (!customer.isEmpty())
        where += QStringLiteral(" AND d.customer_id = (SELECT id FROM customers WHERE name = ?)");
    where += QStringLiteral(" ORDER BY d.next_test, d.device_id, c.name");
    if (limit > 0)
        where += QStringLiteral(" LIMIT %1").arg(limit);
    const QList<DeviceData> found =
        customer.isEmpty() ? SelectDevices(archive, where, {DateValue(before)})
                           : SelectDevices(archive, where, {DateValue(before), CustomerName(customer)});
    QList<DueDevice> devices;
    for (const DeviceData &d : found)
        devices.append(DueFrom(d, intervals));
    return devices;
}

std::optional<DueDevice> DeviceStatus(Archive &archive, const DeviceKey &device)
{
    const QList<DeviceData> found =
        SelectDevices(archive, QStringLiteral("WHERE d.customer_id = ? AND d.device_id = ?"),
                      {device.customerId, device.deviceId});
    if (found.isEmpty())
        return std::nullopt;
    return DueFrom(found.first(), LoadRegulationIntervals(archive));
}

VerifyResult VerifyArchive(Archive &archive)
{
    VerifyResult result;
    QSqlQuery query = archive.Prepare(
        QStringLiteral("SELECT id, sha256, raw FROM records WHERE id > ? ORDER BY id LIMIT %1")
            .arg(kVerifyBatch));
    qint64 last = 0;
    for (;;) {
        archive.Run(query, {last});
        int rows = 0;
        while (archive.Next(query)) {
            ++rows;
            last = query.value(0).toLongLong();
            const QByteArray stored = query.value(1).toString().toLatin1();
            const QByteArray actual = Sha256Hex(query.value(2).toByteArray());
            if (actual != stored)
                result.changed.append({last, stored, actual});
        }
        result.checked += rows;
        if (rows < kVerifyBatch)
            return result;
    }
}

} // namespace kalvo::archive
