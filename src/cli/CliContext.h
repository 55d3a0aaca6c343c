// What every kalvo-cli command works with: options, the prompter, the transport and the link.
#pragma once

#include "CliOptions.h"
#include "CliPrompter.h"
#include "archive/ArchiveLocation.h"
#include "archive/ArchiveTypes.h"
#include "link/Identification.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/Transport.h"

#include <QJsonValue>
#include <QTextStream>
#include <memory>

namespace kalvo::archive {
class Archive;
}

namespace kalvo::cli {

class CliContext {
public:
    explicit CliContext(const CliOptions &options);
    ~CliContext();

    const CliOptions &options() const { return m_options; }
    CliPrompter &prompter() { return m_prompter; }
    link::Link &link() { return *m_link; }
    QTextStream &out() { return m_out; }
    // One JSON document on stdout, for `--json`.
    void PrintJson(const QJsonValue &value);
    // The program's texts: --lang, else line 2 of Q417.ini, else German.
    const link::LanguageTable &texts() const { return m_texts; }
    // The name of the program's language, as the language switch takes it; usage errors speak it
    // even when the language file could not be read.
    const QString &language() const { return m_language; }
    // After an identification: the tester's display language becomes the program's, unless --lang
    // chose one.
    void TesterIdentified(const link::TesterIdentity &identity);
    // Opens the port without waking the tester (for commands that talk to it directly).
    void OpenPort();
    // Opens the port for a command whose records go into the archive: when they will, the tester is
    // identified first, as the window does on connecting, so that they carry its name and serial
    // number.
    void OpenPortForRecords();
    // Where records read now come from: the identified tester, else the port; with the customer of
    // --customer for records that name none.
    archive::RecordSource TesterSource(const QString &accessory = QString(),
                                       const QString &file = QString()) const;
    // The port to use: --port, else line 0 of Q417.ini, else "COM 1"; the simulator with --simulate.
    QString portName() const;
    // The record archive: --archive, else the address in the user settings, else the SQLite file in
    // the user's data folder; opened on first use, to read only or to write as well. Throws
    // ArchiveError.
    archive::Archive &archive(archive::ArchiveAccess access = archive::ArchiveAccess::Write);
    // Puts records just read into the archive as well, unless --no-archive or the settings switched
    // that off. Records the archive cannot decode are named on stderr; false (said on stderr too)
    // when the archive failed, so that the command can exit 1: the records were not archived.
    // Records that name no customer go to the one of --customer when `source` names none.
    bool KeepInArchive(const QList<QByteArray> &records, const archive::RecordSource &source);

private:
    // The texts of `language` from the language file beside the program; a fault is told and the
    // texts stay.
    void UseLanguage(const QString &language);

    CliOptions m_options;
    CliPrompter m_prompter;
    QTextStream m_out;
    link::LanguageTable m_texts;
    QString m_language = QStringLiteral("deutsch");
    std::unique_ptr<link::Transport> m_transport;
    std::unique_ptr<link::Link> m_link;
    struct Simulator;
    std::unique_ptr<Simulator> m_simulator;
    std::unique_ptr<archive::Archive> m_archive;
    QString m_testerName;
    QString m_testerSerial;
};

} // namespace kalvo::cli
