// Putting records into the archive: each kept once, by the SHA-256 of its bytes.
#include "RecordImport.h"

#include "Archive.h"
#include "Customers.h"
#include "RetestIntervals.h"
#include "WhoAndWhere.h"

#include "link/Errors.h"
#include "link/TextRules.h"
#include "records/RecordDecoding.h"

#include <QCryptographicHash>
#include <QHash>
#include <QMap>
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

// Rows a statement inserts: one round trip to a server for many records, and fewer statements for
// SQLite to step through (26 values a row stay far below either database's limit).
constexpr int kRowsPerStatement = 64;

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

// The device's row follows its newest test; an older record read later leaves it alone, and what a
// person entered about the device stays.
const char kUpsertDevice[] =
    "INSERT INTO devices (customer_id, device_id, device_type, regulation, last_tested_at, last_record_id,"
    " next_test) VALUES %1"
    " ON CONFLICT (customer_id, device_id) DO UPDATE SET device_type = excluded.device_type,"
    " regulation = excluded.regulation, last_tested_at = excluded.last_tested_at,"
    " last_record_id = excluded.last_record_id, next_test = excluded.next_test"
    " WHERE excluded.last_tested_at > devices.last_tested_at"
    " OR (excluded.last_tested_at = devices.last_tested_at AND excluded.last_record_id > "
    "devices.last_record_id)";
const int kDeviceColumns = 7;

// Placeholder names ":p0", ":p1", ..., made once. Qt formats such a name afresh for every value
// bound by position, which took a fifth of an import's time.
const QStringList &PlaceholderNames()
{
    static const QStringList names = [] {
        QStringList list;
        for (int i = 0; i < kRowsPerStatement * kRecordColumns; ++i)
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

// Prepared statements by their number of rows, made when first needed and kept for the import.
class Statements {
public:
    Statements(Archive &archive, const QString &sql, int columns)
        : m_archive(archive), m_sql(sql), m_columns(columns)
    {}
    QSqlQuery &ForRows(int rows)
    {
        auto it = m_prepared.find(rows);
        if (it == m_prepared.end())
            it = m_prepared.emplace(rows, m_archive.Prepare(MultiRow(m_sql, rows, m_columns))).first;
        m_current = &it->second;
        m_bound = 0;
        return it->second;
    }
    // Binds the next value of the statement ForRows() returned last.
    void Bind(const QVariant &value) { m_current->bindValue(PlaceholderNames()[m_bound++], value); }

private:
    Archive &m_archive;
    QString m_sql;
    int m_columns;
    QSqlQuery *m_current = nullptr;
    int m_bound = 0;
    std::map<int, QSqlQuery> m_prepared;
};

QString SearchKey(const ArchivedRecord &r)
{
    return QStringList{r.deviceId,      r.deviceType,    r.testerName, r.regulation,
                       r.accessoryKind, r.accessoryType, r.maker,      r.accessoryDeviceId,
                       r.customer,      r.street,        r.postCode,   r.town}
        .join(QLatin1Char('\n'))
        .toLower();
}

// A record described, or why it cannot be.
struct Described {
    ArchivedRecord record;
    QString refusal;
};

Described Describe(const QByteArray &raw)
{
    try {
        return {DescribeRecord(raw), {}};
    } catch (const link::KalvoError &e) {
        return {{}, e.message()};
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
void FindCustomers(Archive &archive, qsizetype count,
                   const std::function<const ArchivedRecord &(qsizetype)> &described, qint64 chosen,
                   QList<qint64> &ids)
{
    QHash<QString, qint64> known = CustomerIds(archive);
    for (qsizetype k = 0; k < count; ++k) {
        const ArchivedRecord &r = described(k);
        if (r.customer.isEmpty()) {
            ids[k] = chosen;
            continue;
        }
        auto it = known.constFind(r.customer);
        if (it == known.cend())
            it = known.insert(r.customer,
                              CustomerIdFor(archive, {0, r.customer, r.street, r.postCode, r.town}));
        ids[k] = *it;
    }
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
    // Decoding needs no database: it runs on every core before the transaction starts, and the
    // refused records are known then. The threads are this call's own and end with it: threads of
    // the global pool would still exist when the program ends, and on Windows the pool's
    // destructor then waits for threads the system has already ended, for good.
    QThreadPool pool;
    const QList<Described> decoded = QtConcurrent::blockingMapped(&pool, records, Describe);
    QList<qsizetype> accepted; // the records that can be stored, by their place in `records`
    ImportResult result;
    for (qsizetype i = 0; i < records.size(); ++i) {
        if (decoded[i].refusal.isEmpty()) {
            accepted.append(i);
        } else {
            result.refused.append(QStringLiteral("Protokoll %1: %2").arg(i + 1).arg(decoded[i].refusal));
        }
    }
    const auto described = [&](qsizetype k) -> const ArchivedRecord & { return decoded[accepted[k]].record; };
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QVariant importedAt = TimestampValue(now);
    QList<qint64> customerIds(accepted.size()); // by the place in `accepted`, found in the transaction
    qint64 importId = 0;
    const auto recordValues = [&](qsizetype k) {
        const ArchivedRecord &r = described(k);
        return QVariantList{QString::fromLatin1(r.sha256),
                            records[accepted[k]],
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
                            SearchKey(r),
                            customerIds[k],
                            importId};
    };
    // Prepared outside the transaction, so that they outlive its rollback (PostgreSQL cannot free a
    // statement inside a failed transaction).
    const QLatin1String orIgnore(archive.isPostgres() ? "" : " OR IGNORE");
    Statements inserts(archive, QString::fromLatin1(kInsertRecord).replace(QLatin1String("%2"), orIgnore),
                       kRecordColumns);
    Statements devices(archive, QString::fromLatin1(kUpsertDevice), kDeviceColumns);
    archive.InBulkTransaction([&] {
        result.added = result.known = 0; // a retried transaction counts afresh
        const qint64 chosenCustomer = CustomerIdFor(archive, {0, source.customer, {}, {}, {}});
        FindCustomers(archive, accepted.size(), described, chosenCustomer, customerIds);
        importId = AddImport(archive, source, now, chosenCustomer);
        const RetestIntervals intervals = LoadIntervals(archive);
        for (qsizetype first = 0; first < accepted.size(); first += kRowsPerStatement) {
            const int rows =
                static_cast<int>(std::min<qsizetype>(kRowsPerStatement, accepted.size() - first));
            QSqlQuery &insert = inserts.ForRows(rows);
            for (qsizetype k = first; k < first + rows; ++k)
                for (const QVariant &value : recordValues(k))
                    inserts.Bind(value);
            archive.Run(insert);
            // The rows the database kept, by hash: a record already there, or twice in this import,
            // comes back once or not at all.
            QHash<QByteArray, qint64> newIds;
            while (archive.Next(insert))
                newIds.insert(insert.value(1).toString().toLatin1(), insert.value(0).toLongLong());
            insert.finish();
            // Each device once a statement, with its newest test of these rows.
            QMap<std::pair<qint64, QString>, std::pair<qsizetype, qint64>> newest;
            for (qsizetype k = first; k < first + rows; ++k) {
                const ArchivedRecord &r = described(k);
                const qint64 id = newIds.take(r.sha256);
                if (id == 0) {
                    ++result.known;
                    continue;
                }
                ++result.added;
                if (r.deviceId.isEmpty() || !r.testedAt.isValid())
                    continue; // no device to follow, or no date to count from
                const std::pair<qint64, QString> key{customerIds[k], r.deviceId};
                const auto it = newest.constFind(key);
                if (it == newest.cend() || described(it->first).testedAt <= r.testedAt)
                    newest.insert(key, {k, id});
            }
            if (newest.isEmpty())
                continue;
            QSqlQuery &device = devices.ForRows(static_cast<int>(newest.size()));
            for (const auto &[k, id] : std::as_const(newest)) {
                const ArchivedRecord &r = described(k);
                const int months = intervals.MonthsFor({customerIds[k], r.deviceId}, r.regulation);
                for (const QVariant &value :
                     {QVariant(customerIds[k]), QVariant(r.deviceId), QVariant(r.deviceType),
                      QVariant(r.regulation), TimestampValue(r.testedAt), QVariant(id),
                      DateValue(NextTestDate(r.testedAt.date(), months))})
                    devices.Bind(value);
            }
            archive.Run(device);
        }
        archive.Exec(QStringLiteral("UPDATE imports SET added = ?, known = ?, refused = ? WHERE id = ?"),
                     {result.added, result.known, static_cast<int>(result.refused.size()), importId});
    });
    return result;
}

} // namespace kalvo::archive
