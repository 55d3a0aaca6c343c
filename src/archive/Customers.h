// The archive's customers: every device belongs to one, records without one to kNoCustomer.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>

namespace kalvo::archive {

class Archive;

struct Customer {
    qint64 id = 0;
    QString name;
    QString street;
    QString postCode;
    QString town;
};

// The name a customer is kept under: trimmed; an empty one is kNoCustomer. Names are matched
// exactly (case and inner blanks count), as a tester's accessory keeps them.
QString CustomerName(const QString &name);

// The customer of that name, nullopt when the archive has none.
std::optional<Customer> FindCustomer(Archive &archive, const QString &name);
// The id of the customer `customer.name`, added with its address when new (inside the caller's
// transaction; two programs adding the same customer at once get the same id).
qint64 CustomerIdFor(Archive &archive, const Customer &customer);
// The id of every customer by its name.
QHash<QString, qint64> CustomerIds(Archive &archive);
// Whether a record among `records` names no customer (the accessory's fields 61..64 empty); one the
// archive would refuse does not count.
bool AnyWithoutCustomer(const QList<QByteArray> &records);
// Every customer, by name.
QList<Customer> ListCustomers(Archive &archive);

} // namespace kalvo::archive
