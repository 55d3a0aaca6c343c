// Moving a file into the tester's flash after its loader has been announced: firmware line by
// line, packages as one stream, both ending with the loader's erase and programming reports.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalvo::link {
class Link;
class Prompter;
class RefusalWatch;
} // namespace kalvo::link

namespace kalvo::update {

class HexFile;

// About one second of line time at 9600 baud (10 bits a byte): a drain that returns only at an
// adapter's next poll (up to 16 ms) then costs under 2 %, and the progress still moves each second.
constexpr qsizetype kStreamBlockBytes = 960;
// A package of this size or less counts as missing.
constexpr qint64 kShortestPackageBytes = 101;
// Far beyond the tester's flash; a larger file is refused with its size instead of being read.
constexpr qint64 kMaxPackageFileBytes = 16 * 1024 * 1024;

// Error numbers of a loader report that is missing or out of place.
constexpr int kEraseReportMissing = 31998;
constexpr int kProgrammingReportMisplaced = 31997;

// The line transfer: each line + CR, waiting up to the time-out for the tester's "!"; then
// "Erasing" (waited for up to the time-out whatever else comes: 3 when nothing came, 31998 when
// the report lacks it) and DC1 behind it.
// Returns false, after the message path + " nicht gefunden", when the file has 10 lines or fewer.
// Throws link::Timeout (3), link::TransferError, link::ProtocolError (a line answered without
// "!"); each message says that the update must be repeated.
bool SendHexFile(link::Link &link, link::Prompter &prompter, const HexFile &hex);

// The character stream: exactly the file's bytes, then the loader's report (AwaitPackageReport). Returns
// false, after " nicht gefunden", for a file of 100 bytes or less. Throws as SendHexFile (link::ProtocolError
// when the loader's report refuses the file), and link::FormatError for a file larger than
// kMaxPackageFileBytes.
bool SendPackageFile(link::Link &link, link::Prompter &prompter, const QString &path);

// What a package loader reports after the stream: the erase report ("rasing", waited for up to
// the time-out whatever else comes: 3 when nothing came, 31998 when the report lacks it, 31997 when
// it begins with "ramming"), the programming report ("ramming", never first; 3 when it does not
// come) and DC1 behind it. A report that refuses the package ("Protokoll" and ".N") is a
// link::ProtocolError. `name` names the file in the messages, which ask for the update again.
void AwaitPackageReport(link::Link &link, const QString &name);

// Throws link::FormatError naming the size when `path` is larger than kMaxPackageFileBytes.
void CheckPackageFileSize(const QString &path);

// Writes `bytes` in blocks of kStreamBlockBytes, each waited for until it has left the machine,
// with the busy pointer on and the progress (0 to 100) following the bytes gone.
void StreamBytes(link::Link &link, link::Prompter &prompter, const QByteArray &bytes);

// Sends a loader command ("kal!upd0".."kal!upd3") and collects its answer, which must hold ".Y"
// without ".N". Flash contents go only to a loader known to listen, in a session that went well:
// when `session` has seen a refusal or a bad answer (the announce is then not sent), or the
// announce's answer is anything else, link::ProtocolError names the refused commands and `path`
// as not sent. A tester whose loader did not open would take the file's bytes as commands.
void AnnounceLoader(link::Link &link, const link::RefusalWatch &session, const QByteArray &command,
                    const QString &path);

// The message for a file not sent: its path and " nicht gefunden".
QString NotFoundText(const QString &path);

} // namespace kalvo::update
