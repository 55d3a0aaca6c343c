// A private folder with the built programs and their data files, so that the files a program keeps
// beside itself (log.tmp) belong to one test.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace kalvo::testing {

class ProgramFolder {
public:
    // Links (or copies) `programs` and every data file of the build's program folder into a new
    // folder beside it, and points KALVO_BIN_DIR there while the object lives, so that
    // BuiltProgram, RunProgram, RunCli and SimProcess use the private copies.
    explicit ProgramFolder(const QStringList &programs = {QStringLiteral("kalvo-cli"),
                                                          QStringLiteral("kalvo-sim")});
    ~ProgramFolder();
    ProgramFolder(const ProgramFolder &) = delete;
    ProgramFolder &operator=(const ProgramFolder &) = delete;

    // False, with the reason in error(), when the folder could not be filled.
    bool ready() const { return m_error.isEmpty(); }
    const QString &error() const { return m_error; }
    QString path() const { return m_dir.path(); }
    QString filePath(const QString &name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
    QByteArray m_previous; // KALVO_BIN_DIR before
    bool m_hadPrevious = false;
    QString m_error;
};

} // namespace kalvo::testing
