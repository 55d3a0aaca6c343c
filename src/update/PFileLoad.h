// A template's P-file made beside it, and loaded into the tester through the picture loader.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::update {

// The seconds the tester gets after EOT CR, and after the P-file before its restart.
constexpr double kPFileWakePause = 1.2;
constexpr double kPFileSettlePause = 1.0;

struct MadePFile {
    QString path;
    QByteArray bytes;
};

// Packs `templatePath` for `slot` (1..4) and writes it, atomically, to `outPath` (the template's
// PFileName when empty). nullopt, after " Der File ist zu lang. Kein P-File erzeugt", when the
// packed size is over the slot's limit: no file is written, an older one stays. Throws
// link::FormatError when the template cannot be read or the P-file cannot be written.
std::optional<MadePFile> MakePFile(link::Prompter &prompter, const QString &templatePath, int slot,
                                   const QString &outPath = {});

// EOT CR, 1.2 s, "idn!99", "kal!ein", "kal!upd3", the P-file's bytes and the loader's report
// (judged as a package's: AwaitPackageReport), 1 s, "rst!0", EOT. A P-file of 100 bytes or less is
// not sent (" nicht gefunden" in its place). True when the bytes went out. A refused "kal!upd3"
// (or any refusal before it) gets no bytes; a failed transfer or a refusal still gets the pause and
// the restart, then throws as the transfers do.
bool LoadPFile(link::Link &link, link::Prompter &prompter, const MadePFile &pfile);

// MakePFile, then LoadPFile of the new file. When no new P-file could be made nothing is loaded,
// least of all an older P-file of the same name.
bool BuildAndLoadPFile(link::Link &link, link::Prompter &prompter, const QString &templatePath, int slot);

} // namespace kalvo::update
