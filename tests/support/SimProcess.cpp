// Runs kalvo-sim on a pseudo-terminal for a test and reads back what reached the tester.
#include "SimProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>

namespace kalvo::testing {

QString BuiltProgram(const QString &name)
{
    return QDir(qEnvironmentVariable("KALVO_BIN_DIR", QStringLiteral(KALVO_BUILT_BIN_DIR))).filePath(name);
}

bool SimProcess::Available()
{
    return QFileInfo(BuiltProgram(QStringLiteral("kalvo-sim"))).isExecutable();
}

SimProcess::SimProcess(const QStringList &arguments)
{
    m_process.setProgram(BuiltProgram(QStringLiteral("kalvo-sim")));
    m_process.setArguments(QStringList{QStringLiteral("--log"), m_dir.filePath(QStringLiteral("sim.log"))} +
                           arguments);
    m_process.start();
    if (!m_process.waitForStarted(10000))
        return;
    while (!m_process.canReadLine() && m_process.waitForReadyRead(10000)) {
    }
    m_pty = QString::fromLocal8Bit(m_process.readLine()).trimmed();
}

SimProcess::~SimProcess()
{
    Stop();
}

void SimProcess::Stop()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(5000))
            m_process.kill();
        m_process.waitForFinished(5000);
    }
}

QList<ReceivedLine> SimProcess::ReceivedLines() const
{
    QList<ReceivedLine> lines;
    QFile log(m_dir.filePath(QStringLiteral("sim.log")));
    if (!log.open(QIODevice::ReadOnly))
        return lines;
    for (const QByteArray &line : log.readAll().split('\n')) {
        const qsizetype tab = line.indexOf('\t');
        if (tab < 0)
            continue;
        const QList<QByteArray> columns = line.split('\t');
        lines.append({columns[0].toDouble(), QString::fromLatin1(columns[1]), columns.size() < 3});
    }
    return lines;
}

QStringList SimProcess::ReceivedBytes() const
{
    QStringList lines;
    for (const ReceivedLine &line : ReceivedLines())
        lines << line.bytes;
    return lines;
}

RunResult RunCli(const SimProcess &sim, const QStringList &arguments, const QString &workingDir, int seconds)
{
    return RunProgram(QStringLiteral("kalvo-cli"),
                      QStringList{QStringLiteral("--port"), sim.pty()} + arguments, seconds, workingDir);
}

RunResult RunProgram(const QString &name, const QStringList &arguments, int seconds,
                     const QString &workingDir, const QString &stderrFile)
{
    QProcess process;
    if (!workingDir.isEmpty())
        process.setWorkingDirectory(workingDir);
    if (!stderrFile.isEmpty())
        process.setStandardErrorFile(stderrFile);
    process.start(BuiltProgram(name), arguments);
    RunResult result;
    if (!process.waitForFinished(seconds * 1000)) {
        process.kill();
        process.waitForFinished();
        result.err = QStringLiteral("did not finish in %1 s").arg(seconds);
        result.hung = true;
        return result;
    }
    result.crashed = process.exitStatus() != QProcess::NormalExit;
    result.exitCode = result.crashed ? -1 : process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

} // namespace kalvo::testing
