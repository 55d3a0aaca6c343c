// The P-file of a print template: header, the template's lines in a run-length code, trailer.
#include "PFile.h"

#include "FileBytes.h"
#include "link/Errors.h"
#include "link/TextRules.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kalvo::update {

namespace {

constexpr qsizetype kLongestRun = 31;
// A count of 13 would read as a line end; the tester gets 0x02 in its place.
constexpr int kLineEndCount = 13;
constexpr char kLineEndCountStandIn = 0x02;
constexpr char kLineEnd = 0x0D;
constexpr qsizetype kHeaderBytes = 9;
// The size bytes hold these until the body is complete.
constexpr char kSizePlaceholderLow = 0x14;
constexpr char kSizePlaceholderHigh = 0x31;
// Below it a byte of the body is a run count or a line end to the tester.
constexpr unsigned char kFirstPrintable = 0x20;

} // namespace

std::optional<unsigned char> SlotByte(int slot)
{
    switch (slot) {
    case 1: return 0xC8;
    case 2: return 0xD0;
    case 3: return 0xE0;
    case 4: return 0xF0;
    default: return std::nullopt;
    }
}

QByteArray PackLine(const QByteArray &line)
{
    QByteArray packed;
    const qsizetype length = line.size();
    for (qsizetype p = 0; p < length; ++p) {
        qsizetype count = 1;
        // Stops one short of the last character, which therefore always stands alone.
        while (count < kLongestRun && p + 2 < length && line[p + 1] == line[p]) {
            ++count;
            ++p;
        }
        const char c = line[p];
        if (count == 1) {
            packed += c;
        } else if (count == 2) {
            packed += c;
            packed += c;
        } else {
            packed += count == kLineEndCount ? kLineEndCountStandIn : static_cast<char>(count);
            packed += c;
        }
    }
    return packed;
}

QList<QByteArray> ReadTemplateLines(const QString &path)
{
    QFile file(path);
    const QString where = QDir::toNativeSeparators(path);
    if (!file.open(QIODevice::ReadOnly))
        throw link::FormatError(where, 0,
                                QStringLiteral("eine lesbare Vorlage (%1)").arg(file.errorString()));
    if (file.size() > kMaxTemplateFileBytes)
        throw link::FormatError(where, 0,
                                QStringLiteral("eine Vorlage von höchstens %1 Bytes, nicht %2 Bytes")
                                    .arg(kMaxTemplateFileBytes)
                                    .arg(file.size()));
    const QList<QByteArray> lines = link::SplitLines(file.read(kMaxTemplateFileBytes));
    for (qsizetype l = 0; l < lines.size(); ++l) {
        for (qsizetype c = 0; c < lines[l].size(); ++c) {
            const auto byte = static_cast<unsigned char>(lines[l][c]);
            if (byte < kFirstPrintable)
                throw link::FormatError(
                    where, static_cast<int>(l + 1),
                    QStringLiteral("in Spalte %1 ein Zeichen ab 0x20, nicht das Steuerzeichen 0x%2")
                        .arg(c + 1)
                        .arg(byte, 2, 16, QLatin1Char('0')));
        }
    }
    return lines;
}

PFileBuild BuildPFile(const QList<QByteArray> &lines, int slot)
{
    const auto slotByte = SlotByte(slot);
    Q_ASSERT(slotByte);
    QByteArray bytes;
    bytes += static_cast<char>(0x89);
    bytes += kSizePlaceholderLow;
    bytes += kSizePlaceholderHigh;
    bytes += '\0';
    bytes += static_cast<char>(slotByte.value_or(0));
    bytes += QByteArray(4, '\0');
    Q_ASSERT(bytes.size() == kHeaderBytes);
    for (const QByteArray &line : lines) {
        bytes += PackLine(line);
        bytes += kLineEnd;
    }
    const int size = static_cast<int>(bytes.size() - 8);
    if (size > (slot == 1 ? kSlot1Size : kSlotSize))
        return {{}, size};
    bytes[1] = static_cast<char>(size & 0xFF);
    bytes[2] = static_cast<char>(size >> 8);
    bytes += QByteArray(2, '\0');
    bytes += "AS 1.40r4\r\n";
    return {bytes, size};
}

QString PFileName(const QString &templatePath)
{
    const QFileInfo info(templatePath);
    const QString name = info.fileName();
    const qsizetype dot = name.indexOf(QLatin1Char('.'));
    return info.dir().filePath((dot < 0 ? name : name.left(dot)).toUpper() + QStringLiteral(".P"));
}

} // namespace kalvo::update
