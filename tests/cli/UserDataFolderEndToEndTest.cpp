// An installed kalvo-cli: its own folder and the folder it is started from are read-only, yet the
// files it keeps there land in the user's data folder, and it says where.
#include "support/ProgramFolder.h"
#include "support/SimProcess.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kalvo::testing;

namespace {

// Makes `path` read-only for everyone while it lives (root writes anyway: see RunAsUser).
class ReadOnly {
public:
    explicit ReadOnly(const QString &path) : m_path(QFile::encodeName(path))
    {
        ::chmod(m_path.constData(), 0555);
    }
    ~ReadOnly() { ::chmod(m_path.constData(), 0755); }

private:
    QByteArray m_path;
};

// kalvo-cli as a user who may not write the read-only folders: root becomes nobody.
RunResult RunAsUser(const QStringList &arguments, const QString &workingDir, const QString &dataHome)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_DATA_HOME"), dataHome);
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dataHome);
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(workingDir);
    process.setChildProcessModifier([] {
        if (::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(99);
    });
    process.start(BuiltProgram(QStringLiteral("kalvo-cli")), arguments);
    RunResult result;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        result.hung = true;
    }
    result.exitCode = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

} // namespace

TEST(CliUserDataFolder, FilesOfAReadOnlyFolderGoToTheDataFolderAndTheOutputSaysWhere)
{
    ProgramFolder programs;
    ASSERT_TRUE(programs.ready()) << programs.error().toStdString();
    QTemporaryDir work;
    QTemporaryDir dataHome;
    ASSERT_EQ(::chmod(QFile::encodeName(dataHome.path()).constData(), 0777), 0);
    const QString records = dataHome.filePath(QStringLiteral("kym.txt"));
    const QString data = dataHome.filePath(QStringLiteral("kalvo"));
    const QString script = dataHome.filePath(QStringLiteral("beispiel.abl"));
    ASSERT_TRUE(WriteFile(script, "var?D3\r\n"));
    const struct {
        QStringList simArguments;
        QStringList arguments;
        QString file;
        QString folder; // where the file belongs
    } cases[] = {
        {{QStringLiteral("--kym")},
         {QStringLiteral("kym"), QStringLiteral("read"), records},
         QStringLiteral("log.tmp"),
         programs.path()},
        {{}, {QStringLiteral("records"), QStringLiteral("list")}, QStringLiteral("proto.txt"), work.path()},
        {{}, {QStringLiteral("specdb"), QStringLiteral("list")}, QStringLiteral("test.txt"), work.path()},
        {{}, {QStringLiteral("script"), script}, QStringLiteral("beispiel.txt"), work.path()},
    };
    for (const auto &c : cases) // the build's folder may hold a log.tmp of an earlier run
        QFile::remove(QDir(c.folder).filePath(c.file));
    const ReadOnly fixedPrograms(programs.path());
    const ReadOnly fixedWork(work.path());
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file.toStdString());
        SimProcess sim(c.simArguments);
        ASSERT_TRUE(sim.started());
        ASSERT_EQ(::chmod(QFile::encodeName(sim.pty()).constData(), 0666), 0);
        const RunResult run = RunAsUser(QStringList{QStringLiteral("--port"), sim.pty()} + c.arguments,
                                        work.path(), dataHome.path());
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_TRUE(QFile::exists(QDir(data).filePath(c.file)));
        EXPECT_FALSE(QFile::exists(QDir(c.folder).filePath(c.file)));
        EXPECT_TRUE(run.err.contains(QStringLiteral("%1: %2 ist nicht beschreibbar, die Datei liegt in %3")
                                         .arg(c.file, c.folder, data)))
            << run.err.toStdString();
    }
    EXPECT_TRUE(QFile::exists(records));
}
