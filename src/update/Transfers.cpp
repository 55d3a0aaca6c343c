// Moving a file into the tester's flash after its loader has been announced: firmware line by
// line, packages as one stream, both ending with the loader's erase and programming reports.
#include "Transfers.h"

#include "HexFile.h"
#include "LoaderReport.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kalvo::update {

namespace {

// The busy pointer for as long as a file is on its way, however the transfer ends.
class BusyScope {
public:
    explicit BusyScope(link::Prompter &prompter) : m_prompter(prompter) { m_prompter.busy(true); }
    ~BusyScope() { m_prompter.busy(false); }
    BusyScope(const BusyScope &) = delete;
    BusyScope &operator=(const BusyScope &) = delete;

private:
    link::Prompter &m_prompter;
};

// Progress that only rises: a bar that went back would tell the user something that is not so.
class RisingProgress {
public:
    explicit RisingProgress(link::Prompter &prompter) : m_prompter(prompter) {}
    void Show(qint64 percent)
    {
        const int p = static_cast<int>(std::clamp<qint64>(percent, 0, 100));
        if (p <= m_shown)
            return;
        m_shown = p;
        m_prompter.progress(p);
    }

private:
    link::Prompter &m_prompter;
    int m_shown = -1;
};

QString FileName(const QString &path)
{
    return QFileInfo(path).fileName();
}

// A line that stopped taking bytes, or a port that vanished, in the middle of a transfer: the
// tester holds part of a file, which the message says.
template <typename Body> void Transferring(const QString &what, Body body)
{
    try {
        body();
    } catch (const link::PortError &e) {
        throw link::PortError(e.kind(),
                              QStringLiteral("%1 (%2). %3").arg(e.text(), what, RepeatUpdateText()));
    }
}

QString ProgrammingReportText(const QString &name, const QString &fault, const LoaderReport &report)
{
    return QStringLiteral("Der Programmierbericht des Kalvomer zu %1 %2: \"%3\". %4")
        .arg(name, fault, report.Shown(), RepeatUpdateText());
}

// The erase report; a report that ended without it is a refusal of the file when it says so, a
// missing erase report (31998), or, when it holds the programming report, one out of place (31997).
void AwaitErasing(link::Link &link, LoaderReport &report, const QByteArray &mark, const QString &name)
{
    if (report.WaitFor(mark, QStringLiteral("\"%1\" nach %2").arg(QString::fromLatin1(mark), name)) ==
        LoaderReport::Outcome::Found)
        return;
    if (report.bytes().contains("Protokoll") && report.bytes().contains(".N")) {
        link.NoteRefusal(name.toLatin1());
        throw link::ProtocolError(link.protocolErrorNumber(),
                                  QStringLiteral("Der Kalvomer hat %1 abgelehnt: \"%2\". %3")
                                      .arg(name, report.Shown(), RepeatUpdateText()));
    }
    if (report.bytes().contains("ramming"))
        throw link::TransferError(
            kProgrammingReportMisplaced,
            ProgrammingReportText(name, QStringLiteral("steht ohne Löschbericht da"), report));
    throw link::TransferError(kEraseReportMissing,
                              QStringLiteral("Der Kalvomer hat nach %1 kein Löschen gemeldet: \"%2\". %3")
                                  .arg(name, report.Shown(), RepeatUpdateText()));
}

// After the erase report: the programming report, which never stands first.
void AwaitProgramming(LoaderReport &report, const QString &name)
{
    if (report.WaitFor("ramming", QStringLiteral("\"...ramming\" nach %1").arg(name)) ==
        LoaderReport::Outcome::Ended)
        throw link::TransferError(kProgrammingReportMisplaced,
                                  ProgrammingReportText(name, QStringLiteral("fehlt"), report));
    if (report.bytes().startsWith("ramming"))
        throw link::TransferError(
            kProgrammingReportMisplaced,
            ProgrammingReportText(name, QStringLiteral("steht ohne Löschbericht vorne"), report));
}

} // namespace

QString NotFoundText(const QString &path)
{
    return QDir::toNativeSeparators(path) + QStringLiteral(" nicht gefunden");
}

void AnnounceLoader(link::Link &link, const link::RefusalWatch &session, const QByteArray &command,
                    const QString &path)
{
    if (!session.refused())
        link::SendSetting(link, command);
    if (!session.refused())
        return;
    throw link::ProtocolError(link.protocolErrorNumber(),
                              QStringLiteral("Der Kalvomer hat %1 abgelehnt; %2 wurde nicht gesendet.")
                                  .arg(session.Describe(), QDir::toNativeSeparators(path)));
}

void CheckPackageFileSize(const QString &path)
{
    const QFileInfo info(path);
    if (info.exists() && info.size() > kMaxPackageFileBytes)
        throw link::FormatError(QDir::toNativeSeparators(path), 0,
                                QStringLiteral("ein Paket von höchstens %1 Bytes, nicht %2 Bytes")
                                    .arg(kMaxPackageFileBytes)
                                    .arg(info.size()));
}

void StreamBytes(link::Link &link, link::Prompter &prompter, const QByteArray &bytes)
{
    const BusyScope busy(prompter);
    RisingProgress progress(prompter);
    progress.Show(0);
    for (qsizetype offset = 0; offset < bytes.size(); offset += kStreamBlockBytes) {
        // Nothing is expected from the tester while it takes a stream; what came is not kept.
        link.DiscardInput();
        try {
            link.WriteRaw(bytes.mid(offset, kStreamBlockBytes));
        } catch (const link::Timeout &) {
            throw link::Timeout(
                QStringLiteral("Die Leitung nimmt keine Bytes mehr an (nach %1 von %2 Bytes). %3")
                    .arg(offset)
                    .arg(bytes.size())
                    .arg(RepeatUpdateText()));
        }
        progress.Show(std::min(offset + kStreamBlockBytes, bytes.size()) * 100 / bytes.size());
    }
}

bool SendHexFile(link::Link &link, link::Prompter &prompter, const HexFile &hex)
{
    if (hex.missing()) {
        prompter.message(NotFoundText(hex.path()), link::Prompter::Icon::Warning);
        return false;
    }
    // The answer routine's own busy pointer stays off after a firmware transfer, as it always has.
    link.setBusyCursor(false);
    const BusyScope busy(prompter);
    RisingProgress progress(prompter);
    progress.Show(0);
    const QString name = FileName(hex.path());
    const qsizetype lines = hex.lines().size();
    LoaderReport report(link);
    Transferring(name, [&] {
        for (qsizetype i = 0; i < lines; ++i) {
            const QString where = QStringLiteral("Zeile %1 von %2 aus %3").arg(i + 1).arg(lines).arg(name);
            report.Clear();
            link.DiscardInput();
            // The "!" shows that the line has arrived; waiting for it is waiting for the line.
            link.QueueRaw(hex.lines()[i] + link::kCR);
            if (report.WaitFor("!", QStringLiteral("\"!\" nach %1").arg(where)) ==
                LoaderReport::Outcome::Ended) {
                link.NoteRefusal(hex.lines()[i]);
                throw link::ProtocolError(link.protocolErrorNumber(),
                                          QStringLiteral("Der Kalvomer hat %1 nicht angenommen: \"%2\". %3")
                                              .arg(where, report.Shown(), RepeatUpdateText()));
            }
            progress.Show(100 * i / lines);
        }
        // What came behind the last "!" belongs to the erase report.
        report.DropThrough("!");
        AwaitErasing(link, report, "Erasing", name);
        progress.Show(100);
        report.WaitForEnd(QStringLiteral("das Ende (DC1) nach %1").arg(name));
    });
    return true;
}

bool SendPackageFile(link::Link &link, link::Prompter &prompter, const QString &path)
{
    CheckPackageFileSize(path);
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.read(kMaxPackageFileBytes) : QByteArray();
    if (bytes.size() < kShortestPackageBytes) {
        prompter.message(NotFoundText(path), link::Prompter::Icon::Warning);
        return false;
    }
    const BusyScope busy(prompter);
    const QString name = FileName(path);
    LoaderReport report(link);
    Transferring(name, [&] {
        StreamBytes(link, prompter, bytes);
        // The package loaders' erase report is matched without its first letter, as it always was.
        AwaitErasing(link, report, "rasing", name);
        AwaitProgramming(report, name);
        report.WaitForEnd(QStringLiteral("das Ende (DC1) nach %1").arg(name));
    });
    return true;
}

} // namespace kalvo::update
