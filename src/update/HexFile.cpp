// A firmware file in Intel HEX: its lines as they go to the tester, and the check before sending.
#include "HexFile.h"

#include "FileBytes.h"
#include "link/Errors.h"
#include "link/TextRules.h"

#include <QDir>
#include <QFile>

namespace kalvo::update {

namespace {

constexpr int kEndOfFile = 0x01;
constexpr int kLastType = 0x05;
// Byte count, two address bytes, type and checksum.
constexpr int kRecordOverhead = 5;

int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

QString Hex2(int value)
{
    return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0')).toUpper();
}

// The data length each fixed-size record type must have; -1 for data records (any length).
int FixedLength(int type)
{
    switch (type) {
    case 0x01: return 0; // end of file
    case 0x02: return 2; // extended segment address
    case 0x03: return 4; // start segment address
    case 0x04: return 2; // extended linear address
    case 0x05: return 4; // start linear address
    default: return -1;
    }
}

// The record's type when `line` is a well-formed record; otherwise throws naming `lineNumber`.
int CheckRecord(const QString &where, int lineNumber, const QByteArray &line)
{
    const auto fail = [&](const QString &expected) { throw link::FormatError(where, lineNumber, expected); };
    if (!line.startsWith(':'))
        fail(line.isEmpty() ? QStringLiteral("einen Satz mit \":\" am Anfang, nicht eine leere Zeile")
                            : QStringLiteral("\":\" am Zeilenanfang"));
    QByteArray bytes;
    for (qsizetype i = 1; i < line.size(); ++i) {
        if (HexDigit(line[i]) < 0)
            fail(QStringLiteral("nur Hexadezimalziffern nach \":\", nicht \"%1\" an Stelle %2")
                     .arg(link::EscapeBytes(line.mid(i, 1)))
                     .arg(i + 1));
        if (i % 2 == 0)
            bytes.append(static_cast<char>(HexDigit(line[i - 1]) * 16 + HexDigit(line[i])));
    }
    if ((line.size() - 1) % 2 != 0)
        fail(QStringLiteral("eine gerade Zahl von Hexadezimalziffern, nicht %1").arg(line.size() - 1));
    if (bytes.size() < kRecordOverhead)
        fail(QStringLiteral("mindestens Länge, Adresse, Satztyp und Prüfsumme (11 Zeichen)"));
    const int count = static_cast<unsigned char>(bytes[0]);
    if (bytes.size() != count + kRecordOverhead)
        fail(QStringLiteral("%1 Datenbytes, wie die Länge %2 sagt, nicht %3")
                 .arg(count)
                 .arg(Hex2(count))
                 .arg(bytes.size() - kRecordOverhead));
    const int type = static_cast<unsigned char>(bytes[3]);
    if (type > kLastType)
        fail(QStringLiteral("einen Satztyp von 00 bis 05, nicht %1").arg(Hex2(type)));
    if (FixedLength(type) >= 0 && count != FixedLength(type))
        fail(QStringLiteral("%1 Datenbytes im Satz vom Typ %2, nicht %3")
                 .arg(FixedLength(type))
                 .arg(Hex2(type))
                 .arg(count));
    int sum = 0;
    for (qsizetype i = 0; i + 1 < bytes.size(); ++i)
        sum += static_cast<unsigned char>(bytes[i]);
    const int expected = (0x100 - (sum & 0xFF)) & 0xFF;
    const int given = static_cast<unsigned char>(bytes.back());
    if (given != expected)
        fail(QStringLiteral("die Prüfsumme %1, nicht %2").arg(Hex2(expected), Hex2(given)));
    return type;
}

} // namespace

HexFile HexFile::Read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return FromBytes(path, {});
    if (file.size() > kMaxHexFileBytes)
        throw link::FormatError(QDir::toNativeSeparators(path), 0,
                                QStringLiteral("eine Firmware-Datei von höchstens %1 Bytes, nicht %2 Bytes")
                                    .arg(kMaxHexFileBytes)
                                    .arg(file.size()));
    return FromBytes(path, file.read(kMaxHexFileBytes));
}

HexFile HexFile::FromBytes(const QString &path, const QByteArray &bytes)
{
    HexFile hex;
    hex.m_path = path;
    hex.m_lines = link::SplitLines(bytes);
    while (!hex.m_lines.isEmpty() && hex.m_lines.back().isEmpty())
        hex.m_lines.removeLast();
    return hex;
}

void HexFile::Check() const
{
    const QString where = QDir::toNativeSeparators(m_path);
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const int lineNumber = static_cast<int>(i + 1);
        const int type = CheckRecord(where, lineNumber, m_lines[i]);
        const bool last = i + 1 == m_lines.size();
        if (type == kEndOfFile && !last)
            throw link::FormatError(where, lineNumber,
                                    QStringLiteral("den Dateiende-Satz (Typ 01) erst in der letzten Zeile"));
        if (type != kEndOfFile && last)
            throw link::FormatError(
                where, lineNumber,
                QStringLiteral("als letzte Zeile den Dateiende-Satz (Typ 01), nicht einen Satz vom Typ %1")
                    .arg(Hex2(type)));
    }
    if (m_lines.isEmpty())
        throw link::FormatError(where, 1, QStringLiteral("einen Dateiende-Satz (Typ 01)"));
}

} // namespace kalvo::update
