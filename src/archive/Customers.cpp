// The archive's customers.
#include "Customers.h"

#include "Archive.h"
#include "ArchiveTypes.h"
#include "RecordImport.h"

#include <QDateTime>
#include <QSqlQuery>

namespace kalvo::archive {

namespace {

const char kSelect[] = "SELECT id, name, street, post_code, town FROM customers";

Customer CustomerFromRow(const QSqlQuery &q)
{
    return {q.value(0).toLongLong(), q.value(1).toString(), q.value(2).toString(), q.value(3).toString(),
            q.value(4).toString()};
}

} // namespace

QString CustomerName(const QString &name)
{
    const QString trimmed = name.trimmed();
    return trimmed.isEmpty() ? kNoCustomer : trimmed;
}

std::optional<Customer> FindCustomer(Archive &archive, const QString &name)
{
    QSqlQuery query =
        archive.Exec(QLatin1String(kSelect) + QStringLiteral(" WHERE name = ?"), {CustomerName(name)});
    if (!archive.Next(query))
        return std::nullopt;
    return CustomerFromRow(query);
}

qint64 CustomerIdFor(Archive &archive, const Customer &customer)
{
    const QString name = CustomerName(customer.name);
    if (const std::optional<Customer> known = FindCustomer(archive, name))
        return known->id;
    archive.Exec(QStringLiteral("INSERT INTO customers (name, street, post_code, town, created_at)"
                                " VALUES (?, ?, ?, ?, ?) ON CONFLICT (name) DO NOTHING"),
                 {name, TextValue(customer.street), TextValue(customer.postCode), TextValue(customer.town),
                  TimestampValue(QDateTime::currentDateTimeUtc())});
    return FindCustomer(archive, name).value().id;
}

QHash<QString, qint64> CustomerIds(Archive &archive)
{
    QSqlQuery query = archive.Exec(QStringLiteral("SELECT name, id FROM customers"));
    QHash<QString, qint64> ids;
    while (archive.Next(query))
        ids.insert(query.value(0).toString(), query.value(1).toLongLong());
    return ids;
}

bool AnyWithoutCustomer(const QList<QByteArray> &records)
{
    for (const QByteArray &raw : records) {
        try {
            if (DescribeRecord(raw).customer.isEmpty())
                return true;
        } catch (const link::KalvoError &) {
            // refused by the import anyway
        }
    }
    return false;
}

QList<Customer> ListCustomers(Archive &archive)
{
    QSqlQuery query = archive.Exec(QLatin1String(kSelect) + QStringLiteral(" ORDER BY name"));
    QList<Customer> customers;
    while (archive.Next(query))
        customers.append(CustomerFromRow(query));
    return customers;
}

} // namespace kalvo::archive
