// Putting records into the archive: each kept once, by the SHA-256 of its bytes.
#include "RecordImport.h"

#include "Archive.h"
#include "BulkStatements.h"
#include "Customers.h"
#include "RetestIntervals.h"
#include "WhoAndWhere.h"

#include "link/Errors.h"
#include "link/TextRules.h"
#include "records/RecordDecoding.h"

#include <QCryptographicHash>
#include <QHash>
#include <QMap>
#include <QScopeGuard>
#include <QSqlQuery>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentMap>

#include <functional>
#include <map>

namespace kalvo::archive {

namespace {

// Fields of a record (see records/README.md): 1 tester, 3 device id, 4 type, 5 date, 6 time,
// 57..64 what the accessory adds.
enum Field {
    kTesterName = 1,
    kDeviceId = 3,
    kDeviceType = 4,
    kDate = 5,
    kTime = 6,
    kAccessoryKind = 57,
    kAccessoryType = 58,
    kMaker = 59,
    kAccessoryDeviceId = 60,
    kCustomer = 61,
    kStreet = 62,
    kPostCode = 63,
    kTown = 64,
};

QList<int> Numbers(const QByteArray &text, char separator)
{
    QList<int> numbers;
    for (const QByteArray &part : text.trimmed().split(separator)) {
        bool ok = false;
        const int value = part.trimmed().toInt(&ok);
        if (!ok)
            return {};
        numbers.append(value);
    }
    return numbers;
}

// %2: " OR IGNORE" on SQLite. Of the records' constraints only the hash can conflict, and that
// conflict is to be passed over; every NOT NULL column gets a value (text "" rather than NULL). Saying
// so tells SQLite that the statement cannot fail half-way, which spares it the undo copy of every
// page the statement changes (for 64 rows, one page of each index and more a row).
const char kInsertRecord[] =
    "INSERT%2 INTO records (sha256, raw, tester_name, device_id, device_type, tested_at, regulation, failed,"
    " protection_class, applied_part, accessory_kind, accessory_type, maker, accessory_device_id, customer,"
    " street, post_code, town, source_tester, source_serial, source_accessory, source_file, imported_at,"
    " type_key, customer_key, search_key, customer_id, import_id) VALUES %1"
    " ON CONFLICT (sha256) DO NOTHING RETURNING id, sha256";
const int kRecordColumns = 28;

// A device met for the first time is added; the rows it returns are the devices that were new.
// Adding them without the update clause below takes a fifth less time on SQLite, which otherwise
// checks each new row as a possible update.
const char kAddDevice[] =
    "INSERT%2 INTO devices (customer_id, device_id, device_type, regulation, last_tested_at, last_record_id,"
    " next_test) VALUES %1"
    " ON CONFLICT (customer_id, device_id) DO NOTHING RETURNING customer_id, device_id";

// A device already there follows its newest test; an older record read later leaves it alone, and
// what a person entered about the device stays.
const char kUpdateDevice[] =
    "INSERT INTO devices (customer_id, device_id, device_type, regulation, last_tested_at, last_record_id,"
    " next_test) VALUES %1"
    " ON CONFLICT (customer_id, device_id) DO UPDATE SET device_type = excluded.device_type,"
    " regulation = excluded.regulation, last_tested_at = excluded.last_tested_at,"
    " last_record_id = excluded.last_record_id, next_test = excluded.next_test"
    " WHERE excluded.last_tested_at > devices.last_tested_at"
    " OR (excluded.last_tested_at = devices.last_tested_at AND excluded.last_record_id > "
    "devices.last_record_id)";
const int kDeviceColumns = 7;

QString SearchKey(const ArchivedRecord &r)
{
    return QStringList{r.deviceId,      r.deviceType,    r.testerName, r.regulation,
                       r.accessoryKind, r.accessoryType, r.maker,      r.accessoryDeviceId,
                       r.customer,      r.street,        r.postCode,   r.town}
        .join(QLatin1Char('\n'))
        .toLower();
}

// A record read for the archive, or why it cannot be stored. `values` are its row's values but the
// last two, its customer and its import, which only the writing thread knows.
struct Described {
    ArchivedRecord record;
    QVariantList values;
    QString refusal;
};

// The values of a record's row but its customer and its import (kInsertRecord's columns), made where
// the record is decoded, not by the thread that writes.
QVariantList RowValues(const ArchivedRecord &r, const QByteArray &raw, const RecordSource &source,
                       const QVariant &importedAt)
{
    return {QString::fromLatin1(r.sha256),
            raw,
            TextValue(r.testerName),
            TextValue(r.deviceId),
            TextValue(r.deviceType),
            TimestampValue(r.testedAt),
            TextValue(r.regulation),
            r.failed ? 1 : 0,
            TextValue(r.protectionClass),
            TextValue(r.appliedPart),
            TextValue(r.accessoryKind),
            TextValue(r.accessoryType),
            TextValue(r.maker),
            TextValue(r.accessoryDeviceId),
            TextValue(r.customer),
            TextValue(r.street),
            TextValue(r.postCode),
            TextValue(r.town),
            TextValue(source.tester),
            TextValue(source.testerSerial),
            TextValue(source.accessory),
            TextValue(source.file),
            importedAt,
            TextValue(r.deviceType.toLower()),
            TextValue(r.customer.toLower()),
            SearchKey(r)};
}

Described Describe(const QByteArray &raw, const RecordSource &source, const QVariant &importedAt)
{
    try {
        ArchivedRecord record = DescribeRecord(raw);
        QVariantList values = RowValues(record, raw, source, importedAt);
        return {std::move(record), std::move(values), {}};
    } catch (const link::KalvoError &e) {
        return {{}, {}, e.message()};
    }
}

} // namespace

QByteArray Sha256Hex(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

QDateTime TestTimestamp(const QByteArray &date, const QByteArray &time)
{
    const QList<int> d = Numbers(date, '.');
    if (d.size() != 3)
        return {};
    int year = d[2];
    if (year >= 0 && year < 100) // the tester writes two digits; it was not sold before 1980
        year += year < 80 ? 2000 : 1900;
    const QDate day(year, d[1], d[0]);
    if (!day.isValid())
        return {};
    const QList<int> t = Numbers(time, ':');
    QTime clock;
    if (t.size() == 2 || t.size() == 3)
        clock = QTime(t[0], t[1], t.value(2));
    return QDateTime(day, clock.isValid() ? clock : QTime(0, 0), Qt::UTC);
}

namespace {

// The customer of each record: the one it names, or the one chosen for the import. The customers
// known are read at once (a lookup a customer took a third of a large import's time); a new one is
// added when first met.
class CustomerFinder {
public:
    CustomerFinder(Archive &archive, qint64 chosen)
        : m_archive(archive), m_known(CustomerIds(archive)), m_chosen(chosen)
    {}
    qint64 IdFor(const ArchivedRecord &r)
    {
        if (r.customer.isEmpty())
            return m_chosen;
        auto it = m_known.constFind(r.customer);
        if (it == m_known.cend())
            it = m_known.insert(r.customer,
                                CustomerIdFor(m_archive, {0, r.customer, r.street, r.postCode, r.town}));
        return *it;
    }

private:
    Archive &m_archive;
    QHash<QString, qint64> m_known;
    qint64 m_chosen;
};

// One row to write: the record and its customer.
struct Row {
    Described described;
    qint64 customerId;
};

// Writes an import's rows a statement at a time: the records, then the devices they tested.
class RowWriter {
public:
    explicit RowWriter(Archive &archive);
    // Starts a transaction's writing (a retried one starts afresh).
    void Begin(qint64 importId, RetestIntervals intervals);
    // Stores `rows` (at most kRowsPerStatement), counting each as added or known.
    void Write(const QList<Row> &rows, ImportResult &result);

private:
    // Each device of a statement once, with its newest new record: the row and the record's id.
    using Newest = QMap<std::pair<qint64, QString>, std::pair<const Row *, qint64>>;
    QHash<QByteArray, qint64> InsertRecords(const QList<Row> &rows);
    QSqlQuery &BindDevices(BulkStatements &statements, const Newest &devices);

    Archive &m_archive;
    BulkStatements m_records;
    BulkStatements m_newDevices;
    BulkStatements m_knownDevices;
    qint64 m_importId = 0;
    RetestIntervals m_intervals;
};

// %2 of a statement: " OR IGNORE" on SQLite (see kInsertRecord).
QString WithOrIgnore(const Archive &archive, const char *sql)
{
    return QString::fromLatin1(sql).replace(
        QLatin1String("%2"), archive.isPostgres() ? QLatin1String("") : QLatin1String(" OR IGNORE"));
}

RowWriter::RowWriter(Archive &archive)
    : m_archive(archive), m_records(archive, WithOrIgnore(archive, kInsertRecord), kRecordColumns),
      m_newDevices(archive, WithOrIgnore(archive, kAddDevice), kDeviceColumns),
      m_knownDevices(archive, QString::fromLatin1(kUpdateDevice), kDeviceColumns)
{}

void RowWriter::Begin(qint64 importId, RetestIntervals intervals)
{
    m_importId = importId;
    m_intervals = std::move(intervals);
}

void RowWriter::Write(const QList<Row> &rows, ImportResult &result)
{
    QHash<QByteArray, qint64> newIds = InsertRecords(rows);
    Newest newest;
    for (const Row &row : rows) {
        const ArchivedRecord &r = row.described.record;
        const qint64 id = newIds.take(r.sha256);
        if (id == 0) {
            ++result.known;
            continue;
        }
        ++result.added;
        if (r.deviceId.isEmpty() || !r.testedAt.isValid())
            continue; // no device to follow, or no date to count from
        const std::pair<qint64, QString> key{row.customerId, r.deviceId};
        const auto it = newest.constFind(key);
        if (it == newest.cend() || it->first->described.record.testedAt <= r.testedAt)
            newest.insert(key, {&row, id});
    }
    if (newest.isEmpty())
        return;
    QSqlQuery &added = BindDevices(m_newDevices, newest);
    m_archive.Run(added);
    while (m_archive.Next(added))
        newest.remove({added.value(0).toLongLong(), added.value(1).toString()});
    added.finish();
    if (!newest.isEmpty())
        m_archive.Run(BindDevices(m_knownDevices, newest));
}

// The rows the database kept, by hash: a record already there, or twice in this import, comes back
// once or not at all.
QHash<QByteArray, qint64> RowWriter::InsertRecords(const QList<Row> &rows)
{
    QSqlQuery &insert = m_records.ForRows(static_cast<int>(rows.size()));
    for (const Row &row : rows) {
        for (const QVariant &value : row.described.values)
            m_records.Bind(value);
        m_records.Bind(row.customerId);
        m_records.Bind(m_importId);
    }
    m_archive.Run(insert);
    QHash<QByteArray, qint64> ids;
    while (m_archive.Next(insert))
        ids.insert(insert.value(1).toString().toLatin1(), insert.value(0).toLongLong());
    insert.finish();
    return ids;
}

QSqlQuery &RowWriter::BindDevices(BulkStatements &statements, const Newest &devices)
{
    QSqlQuery &query = statements.ForRows(static_cast<int>(devices.size()));
    for (const auto &[row, id] : devices) {
        const ArchivedRecord &r = row->described.record;
        const int months = m_intervals.MonthsFor({row->customerId, r.deviceId}, r.regulation);
        for (const QVariant &value :
             {QVariant(row->customerId), QVariant(r.deviceId), QVariant(TextValue(r.deviceType)),
              QVariant(TextValue(r.regulation)), TimestampValue(r.testedAt), QVariant(id),
              DateValue(NextTestDate(r.testedAt.date(), months))})
            statements.Bind(value);
    }
    return query;
}

// The import's own row: when, from where, by whom; its counts are written at its end.
qint64 AddImport(Archive &archive, const RecordSource &source, const QDateTime &now, qint64 customer)
{
    const WhoAndWhere who = CurrentWhoAndWhere();
    QSqlQuery insert = archive.Exec(
        QStringLiteral(
            "INSERT INTO imports (imported_at, source_tester, source_serial, source_file, system_user,"
            " host, kalvo_version, customer_id, added, known, refused)"
            " VALUES (?, ?, ?, ?, ?, ?, ?, ?, 0, 0, 0) RETURNING id"),
        {TimestampValue(now), TextValue(source.tester), TextValue(source.testerSerial),
         TextValue(source.file), TextValue(who.user), TextValue(who.host), TextValue(who.version), customer});
    archive.Next(insert);
    return insert.value(0).toLongLong();
}

} // namespace

ArchivedRecord DescribeRecord(const QByteArray &raw)
{
    // Only what the tester wrote as a record is kept: the decoder would read fields out of anything.
    if (!records::IsWholeRecordText(raw))
        throw link::FormatError(QStringLiteral("\"%1\"").arg(link::EscapeBytes(raw.left(40))), 0,
                                QStringLiteral("ein ganzes Protokoll: Felder mit \";\", am Ende \"$FF\""));
    const records::DecodedRecord decoded = records::DecodeRecord(raw);
    const auto text = [&decoded](int field) {
        return link::DecodeRecordText(decoded.Field(field)).trimmed();
    };
    ArchivedRecord r;
    r.sha256 = Sha256Hex(raw);
    r.testerName = text(kTesterName);
    r.deviceId = text(kDeviceId);
    if (r.deviceId.isEmpty()) // a record made with the accessory may carry the id only there
        r.deviceId = text(kAccessoryDeviceId);
    r.deviceType = text(kDeviceType);
    r.testedAt = TestTimestamp(decoded.Field(kDate), decoded.Field(kTime));
    r.regulation = decoded.regulation;
    r.verdict = decoded.verdict.trimmed();
    r.failed = decoded.verdict == QLatin1String(" nicht bestanden");
    r.protectionClass = decoded.protectionClass;
    r.appliedPart = decoded.appliedPart;
    r.accessoryKind = text(kAccessoryKind);
    r.accessoryType = text(kAccessoryType);
    r.maker = text(kMaker);
    r.accessoryDeviceId = text(kAccessoryDeviceId);
    r.customer = text(kCustomer);
    r.street = text(kStreet);
    r.postCode = text(kPostCode);
    r.town = text(kTown);
    return r;
}

ImportResult ImportRecords(Archive &archive, const QList<QByteArray> &records, const RecordSource &source)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QVariant importedAt = TimestampValue(now);
    // Decoding needs no database: it runs on the other cores while this thread writes the records
    // before. The threads are this call's own and end with it: threads of the global pool would
    // still exist when the program ends, and on Windows the pool's destructor then waits for
    // threads the system has already ended, for good.
    QThreadPool pool;
    QFuture<Described> described = QtConcurrent::mapped(
        &pool, records, [&](const QByteArray &raw) { return Describe(raw, source, importedAt); });
    const auto stopDecoding = qScopeGuard([&described] {
        described.cancel();
        described.waitForFinished();
    });
    // Its statements are prepared when first needed and outlive a rollback (PostgreSQL cannot free
    // a statement inside a failed transaction).
    RowWriter writer(archive);
    ImportResult result;
    archive.InBulkTransaction([&] {
        result = {}; // a retried transaction counts afresh
        const qint64 chosenCustomer = CustomerIdFor(archive, {0, source.customer, {}, {}, {}});
        CustomerFinder customers(archive, chosenCustomer);
        const qint64 importId = AddImport(archive, source, now, chosenCustomer);
        writer.Begin(importId, LoadIntervals(archive));
        QList<Row> rows;
        rows.reserve(kRowsPerStatement);
        for (qsizetype i = 0; i < records.size(); ++i) {
            Described record = described.resultAt(static_cast<int>(i));
            if (!record.refusal.isEmpty()) {
                result.refused.append(QStringLiteral("Protokoll %1: %2").arg(i + 1).arg(record.refusal));
                continue;
            }
            const qint64 customerId = customers.IdFor(record.record);
            rows.append({std::move(record), customerId});
            if (rows.size() == kRowsPerStatement) {
                writer.Write(rows, result);
                rows.clear();
            }
        }
        if (!rows.isEmpty())
            writer.Write(rows, result);
        archive.Exec(QStringLiteral("UPDATE imports SET added = ?, known = ?, refused = ? WHERE id = ?"),
                     {result.added, result.known, static_cast<int>(result.refused.size()), importId});
    });
    return result;
}

} // namespace kalvo::archive
