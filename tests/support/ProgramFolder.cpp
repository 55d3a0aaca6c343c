// A private folder with the built programs and their data files, so that the files a program keeps
// beside itself (log.tmp) belong to one test.
#include "ProgramFolder.h"

#include "SimProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "platform/FileSystem.h"

namespace kalvo::testing {

namespace {

constexpr const char *kBinDirVariable = "KALVO_BIN_DIR";

// A hard link costs nothing and keeps the file executable; a copy is the fallback.
bool LinkOrCopy(const QString &from, const QString &to)
{
    return platform::HardLink(from, to) || QFile::copy(from, to);
}

QString BuiltFolder()
{
    return QFileInfo(BuiltProgram(QStringLiteral("kalvo-cli"))).absolutePath();
}

} // namespace

// Beside the build's folder, on the same file system, so that the links work.
ProgramFolder::ProgramFolder(const QStringList &programs)
    : m_dir(QDir(BuiltFolder()).filePath(QStringLiteral("../program-folder-XXXXXX")))
{
    if (!m_dir.isValid()) {
        m_error = QStringLiteral("no private program folder: %1").arg(m_dir.errorString());
        return;
    }
    const QDir built(BuiltFolder());
    QStringList names = programs;
    // The data files: everything in the folder that is not a program.
    for (const QFileInfo &file : built.entryInfoList(QDir::Files)) {
        if (!file.isExecutable())
            names << file.fileName();
    }
    for (const QString &name : std::as_const(names)) {
        if (!LinkOrCopy(built.filePath(name), m_dir.filePath(name))) {
            m_error = QStringLiteral("cannot put %1 into %2").arg(built.filePath(name), m_dir.path());
            return;
        }
    }
    m_hadPrevious = qEnvironmentVariableIsSet(kBinDirVariable);
    m_previous = qgetenv(kBinDirVariable);
    qputenv(kBinDirVariable, QFile::encodeName(m_dir.path()));
}

ProgramFolder::~ProgramFolder()
{
    if (!ready())
        return;
    if (m_hadPrevious)
        qputenv(kBinDirVariable, m_previous);
    else
        qunsetenv(kBinDirVariable);
}

} // namespace kalvo::testing
