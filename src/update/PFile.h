// The P-file of a print template: header, the template's lines in a run-length code, trailer.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace kalvo::update {

constexpr int kFirstSlot = 1;
constexpr int kLastSlot = 4;
// The packed size that slot 1 holds, and the others.
constexpr int kSlot1Size = 2048;
constexpr int kSlotSize = 4096;
// Far beyond what any slot can hold even packed at best; a larger template is not read.
constexpr qint64 kMaxTemplateFileBytes = 1024 * 1024;
inline const QString kTooLongText = QStringLiteral(" Der File ist zu lang. Kein P-File erzeugt");

// The slot byte of template 1..4 (0xC8, 0xD0, 0xE0, 0xF0); nullopt for any other number.
std::optional<unsigned char> SlotByte(int slot);

// One template line in the run-length code: runs of up to 31 equal characters as count and
// character (a run of 2 as the character twice, a run of 13 as 0x02 and the character, for 13 is
// the line end); the line's last character never joins a run.
QByteArray PackLine(const QByteArray &line);

// The template file's lines: 8-bit text, lines ending at CR LF, LF or CR. Throws
// link::FormatError when the file cannot be read or is larger than kMaxTemplateFileBytes, and,
// naming the line and the column, for a control byte (below 0x20) in a line: the tester would
// read 0x02 to 0x1F as a run count, and takes no control character into a template.
QList<QByteArray> ReadTemplateLines(const QString &path);

struct PFileBuild {
    QByteArray bytes;   // empty when the template is too long for its slot
    int packedSize = 0; // header and body less 8, the size the header holds
};
// The whole P-file: 0x89, the packed size (low byte first), 0x00, the slot byte, four 0x00, the
// packed lines each closed by 0x0D, 0x00 0x00, "AS 1.40r4", CR LF. Empty bytes when the packed size
// is over the slot's limit. `slot` must be 1..4.
PFileBuild BuildPFile(const QList<QByteArray> &lines, int slot);

// The template's name up to its first ".", then ".P", upper case, in the template's folder.
QString PFileName(const QString &templatePath);

} // namespace kalvo::update
