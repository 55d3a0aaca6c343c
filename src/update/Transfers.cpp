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

// A report that refuses the file: counted as a refusal and told.
[[noreturn]] void Refused(link::Link &link, const LoaderReport &report, const QString &name)
{
    link.NoteRefusal(name.toLatin1());
    throw link::ProtocolError(link.protocolErrorNumber(),
                              QStringLiteral("Der Kalvomer hat %1 abgelehnt: \"%2\". %3")
                                  .arg(name, report.Shown(), RepeatUpdateText()));
}

// The erase report, waited for up to the time-out whatever else comes. A tester that said nothing
// at all has not answered (3); one that reported without it has not erased (31998), unless, in a
// package's report, the programming report stands first: then it is out of place (31997).
// Returns where the erase word ends.
qsizetype AwaitErasing(link::Link &link, LoaderReport &report, const QByteArray &mark, const QString &name,
                       bool package)
{
    const QString waitingFor = QStringLiteral("\"%1\" nach %2").arg(QString::fromLatin1(mark), name);
    switch (report.WaitForWord(mark)) {
    case LoaderReport::Outcome::Found: return report.bytes().indexOf(mark) + mark.size();
    case LoaderReport::Outcome::Refused: Refused(link, report, name);
    default: break;
    }
    if (report.bytes().isEmpty())
        throw report.TimedOut(waitingFor);
    if (package && report.bytes().startsWith("ramming"))
        throw link::TransferError(
            kProgrammingReportMisplaced,
            ProgrammingReportText(name, QStringLiteral("steht ohne Löschbericht vorne"), report));
    throw link::TransferError(kEraseReportMissing,
                              QStringLiteral("Der Kalvomer hat nach %1 kein Löschen gemeldet: \"%2\". %3")
                                  .arg(name, report.Shown(), RepeatUpdateText()));
}

// After the erase report: the programming report, which never stands first. Returns where its
// word ends.
qsizetype AwaitProgramming(link::Link &link, LoaderReport &report, const QString &name)
{
    // The end of the tester's programming report, as the package loaders have always been read.
    const QByteArray word = "ramming";
    switch (report.WaitForWord(word)) {
    case LoaderReport::Outcome::Found: break;
    case LoaderReport::Outcome::Refused: Refused(link, report, name);
    default: throw report.TimedOut(QStringLiteral("\"...%1\" nach %2").arg(QString::fromLatin1(word), name));
    }
    if (report.bytes().startsWith(word))
        throw link::TransferError(
            kProgrammingReportMisplaced,
            ProgrammingReportText(name, QStringLiteral("steht ohne Löschbericht vorne"), report));
    return report.bytes().indexOf(word) + word.size();
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
        const qsizetype erased = AwaitErasing(link, report, "Erasing", name, false);
        progress.Show(100);
        report.WaitForEnd(erased, QStringLiteral("das Ende (DC1) nach %1").arg(name));
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
    Transferring(name, [&] {
        StreamBytes(link, prompter, bytes);
        AwaitPackageReport(link, name);
    });
    return true;
}

void AwaitPackageReport(link::Link &link, const QString &name)
{
    LoaderReport report(link);
    // The package loaders' erase report is matched without its first letter, as it always was.
    AwaitErasing(link, report, "rasing", name, true);
    const qsizetype programmed = AwaitProgramming(link, report, name);
    report.WaitForEnd(programmed, QStringLiteral("das Ende (DC1) nach %1").arg(name));
}

} // namespace kalvo::update
