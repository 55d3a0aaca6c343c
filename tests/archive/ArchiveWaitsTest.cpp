// Waits on the archive: another program's lock, a server that stops answering, and reading without
// writing. Each ends within its deadline with a message that says what happened.
#include "ArchiveSamples.h"

#include "archive/ArchiveQueries.h"
#include "archive/RecordImport.h"
#include "platform/Processes.h"
#include "support/TestFiles.h"

#include <QScopeGuard>
#include <QSqlQuery>

using namespace kalvo;
using namespace kalvo::archive;
using namespace kalvo::testing;

namespace {

QString Text(const ArchiveError &e)
{
    return e.text();
}

TEST(ArchiveWaits, ABusyFileIsNamedWithinItsWaitWhileReadingNeedsNoWriteLock)
{
    const struct {
        const char *name;
        bool exclusive;
        bool readable; // whether another program's readers still get in
    } cases[] = {{"writing", false, true}, {"holding the file for itself", true, false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("archive.sqlite"));
        ImportRecords(*std::make_unique<Archive>(ParseArchiveUrl(path)), {MakeRecord({})}, {});
        const ArchiveTarget target =
            ParseArchiveUrl(QStringLiteral("sqlite://") + path + QStringLiteral("?wait=1"));
        const OtherProgram other(path, c.exclusive);

        if (c.readable) {
            Archive reader(target, ArchiveAccess::Read);
            EXPECT_EQ(CountRecords(reader, {}), 1);
            // Opening to write takes no lock either; only the import's transaction waits.
            Archive writer(target);
            try {
                ImportRecords(writer, {MakeRecord({.device = "D-2"})}, {});
                ADD_FAILURE() << "imported while another program held the lock";
            } catch (const ArchiveError &e) {
                EXPECT_TRUE(
                    Text(e).contains(QStringLiteral("von einem anderen Programm benutzt (1 s gewartet)")))
                    << Text(e).toStdString();
            }
        } else {
            try {
                Archive reader(target, ArchiveAccess::Read);
                CountRecords(reader, {});
                ADD_FAILURE() << "read a file another program holds for itself";
            } catch (const ArchiveError &e) {
                EXPECT_TRUE(Text(e).contains(QStringLiteral("von einem anderen Programm benutzt")))
                    << Text(e).toStdString();
            }
        }
    }
}

TEST(ArchiveWaits, ReadingNeverCreatesAnArchiveNorTakesAnEmptyOneForOne)
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("tippfehler/archiv.sqlite"));
    try {
        Archive archive(ParseArchiveUrl(missing), ArchiveAccess::Read);
        ADD_FAILURE() << "opened a missing archive to read";
    } catch (const ArchiveError &e) {
        EXPECT_TRUE(Text(e).contains(QStringLiteral("gibt es nicht"))) << Text(e).toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(missing).absolutePath()));

    const QString empty = dir.filePath(QStringLiteral("leer.sqlite"));
    ASSERT_TRUE(WriteFile(empty, {}));
    EXPECT_THROW(Archive(ParseArchiveUrl(empty), ArchiveAccess::Read), ArchiveError);
    EXPECT_EQ(QFileInfo(empty).size(), 0);
}

TEST(ArchiveWaits, AServerThatStopsAnsweringEndsTheWaitAndNothingOfTheImportIsKept)
{
    if (!kalvo::testing::PostgresCluster::Available())
        GTEST_SKIP() << "no PostgreSQL server on this system";
    ArchivePlace place(Backend::PostgreSQL);
    ASSERT_TRUE(place.error().isEmpty()) << place.error().toStdString();
    Archive archive(ParseArchiveUrl(place.url() + QStringLiteral("&wait=1")));
    ImportRecords(archive, {MakeRecord({})}, {});
    QSqlQuery pid = archive.Exec(QStringLiteral("SELECT pg_backend_pid()"));
    ASSERT_TRUE(archive.Next(pid));
    const qint64 server = pid.value(0).toLongLong();
    pid.finish();

    // The server's process stops; its machine still takes the bytes sent and acknowledges them.
    ASSERT_TRUE(platform::PauseProcess(server));
    const auto resume = qScopeGuard([server] { platform::ResumeProcess(server); });
    try {
        ImportRecords(archive, ManyRecords(300), {});
        ADD_FAILURE() << "an import went on with a server that does not answer";
    } catch (const ArchiveError &e) {
        EXPECT_TRUE(Text(e).contains(QStringLiteral("nicht geantwortet; die Verbindung ist getrennt")))
            << Text(e).toStdString();
    }
    // Everything after it ends at once.
    EXPECT_THROW(CountRecords(archive, {}), ArchiveError);
    platform::ResumeProcess(server);

    Archive again(ParseArchiveUrl(place.url()));
    EXPECT_EQ(CountRecords(again, {}), 1);
}

} // namespace
