// Records and archives for the archive tests: a record of a given device, date and verdict, and an
// archive on either database.
#pragma once

#include "archive/Archive.h"
#include "records/RecordSamples.h"
#include "support/PostgresCluster.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <memory>

namespace kalvo::testing {

enum class Backend { SQLite, PostgreSQL };

inline std::string BackendName(const ::testing::TestParamInfo<Backend> &info)
{
    return info.param == Backend::SQLite ? "SQLite" : "PostgreSQL";
}

struct SampleRecord {
    QByteArray device = "D-1";
    QByteArray type = "Bohrmaschine";
    QByteArray date = "12.01.09";
    QByteArray time = "08:14";
    char result = '0';     // '7' and above: failed
    char regulation = '5'; // DIN VDE 0702
    QMap<int, QByteArray> more = {};
};

inline QByteArray MakeRecord(const SampleRecord &s)
{
    QMap<int, QByteArray> fields = s.more;
    fields.insert(1, "KALVO-1");
    fields.insert(2, CodeString(s.result, s.regulation));
    fields.insert(3, s.device);
    fields.insert(4, s.type);
    fields.insert(5, s.date);
    fields.insert(6, s.time);
    return RecordText(fields);
}

// `count` different records of `devices` devices, one a day from 1.1.2020 on.
inline QList<QByteArray> ManyRecords(int count, int devices = 50)
{
    QList<QByteArray> records;
    const QDate start(2020, 1, 1);
    for (int i = 0; i < count; ++i) {
        const QDate day = start.addDays(i % 3000);
        records.append(MakeRecord({.device = "DEV-" + QByteArray::number(i % devices),
                                   .date = day.toString(QStringLiteral("dd.MM.yy")).toLatin1(),
                                   .time = QByteArray::number(i % 24) + ":" + QByteArray::number(i % 60),
                                   .more = {{70, QByteArray::number(i)}}}));
    }
    return records;
}

// A fresh, empty archive of the test's backend: a file in a temporary folder, or a new database of
// the test process's own PostgreSQL server.
class ArchivePlace {
public:
    explicit ArchivePlace(Backend backend)
    {
        if (backend == Backend::SQLite) {
            m_url = m_dir.filePath(QStringLiteral("archive.sqlite"));
            return;
        }
        PostgresCluster &cluster = PostgresCluster::Shared();
        if (!cluster.ready()) {
            m_error = cluster.error();
            return;
        }
        m_url = cluster.CreateDatabase();
        if (m_url.isEmpty())
            m_error = cluster.error();
    }
    const QString &url() const { return m_url; }
    const QString &error() const { return m_error; }
    std::unique_ptr<archive::Archive> Open() const
    {
        return std::make_unique<archive::Archive>(archive::ParseArchiveUrl(m_url));
    }

private:
    QTemporaryDir m_dir;
    QString m_url;
    QString m_error;
};

// A test that runs once on each backend, with a fresh archive place.
class OnBothBackends : public ::testing::TestWithParam<Backend> {
protected:
    void SetUp() override
    {
        if (GetParam() == Backend::PostgreSQL && !kalvo::testing::PostgresCluster::Available())
            GTEST_SKIP() << "no PostgreSQL server on this system";
        m_place = std::make_unique<ArchivePlace>(GetParam());
        ASSERT_TRUE(m_place->error().isEmpty()) << m_place->error().toStdString();
    }
    std::unique_ptr<ArchivePlace> m_place;
};

// The same with the archive opened.
class OnBothBackendsOpen : public OnBothBackends {
protected:
    void SetUp() override
    {
        OnBothBackends::SetUp();
        if (!HasFatalFailure() && !IsSkipped())
            m_archive = m_place->Open();
    }
    archive::Archive &archive() { return *m_archive; }
    std::unique_ptr<archive::Archive> m_archive;
};

// Another program on the same SQLite file, holding its lock as long as it lives.
class OtherProgram {
public:
    // `exclusive`: it also keeps readers out (a program in SQLite's exclusive locking mode).
    OtherProgram(const QString &path, bool exclusive) : m_name(QStringLiteral("other-%1").arg(++s_count))
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        EXPECT_TRUE(db.open());
        QSqlQuery query(db);
        if (exclusive) {
            EXPECT_TRUE(query.exec(QStringLiteral("PRAGMA journal_mode = DELETE")));
            EXPECT_TRUE(query.exec(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE")));
        }
        EXPECT_TRUE(query.exec(QStringLiteral("BEGIN IMMEDIATE"))) << query.lastError().text().toStdString();
        EXPECT_TRUE(query.exec(QStringLiteral("UPDATE regulation_intervals SET months = months")));
        if (exclusive) {
            EXPECT_TRUE(query.exec(QStringLiteral("COMMIT"))); // the exclusive lock stays after it
        }
    }
    ~OtherProgram()
    {
        QSqlDatabase::database(m_name).close();
        QSqlDatabase::removeDatabase(m_name);
    }

private:
    static inline int s_count = 0;
    QString m_name;
};

} // namespace kalvo::testing
