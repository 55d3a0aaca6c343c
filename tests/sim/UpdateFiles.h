// Update files for the virtual tester's loaders: Intel HEX lines, data packages and template P-files.
#pragma once

#include <QByteArray>
#include <QList>

namespace kalvo::testing {

// Good records of a small firmware (each with its checksum) and the end record.
inline QList<QByteArray> FirmwareLines(int dataLines = 12)
{
    static const QByteArray data[] = {
        ":10010000214601360121470136007EFE09D2190140",
        ":100110002146017E17C20001FF5F16002148011928",
        ":10012000194E79234623965778239EDA3F01B2CAA7",
        ":100130003F0156702B5E712B722B732146013421C7",
    };
    QList<QByteArray> lines{":020000040000FA"};
    for (int i = 0; i < dataLines; ++i)
        lines << data[i % 4];
    lines << ":00000001FF";
    return lines;
}

// The trailer of every package: 0x00 0x00, the packer's version, CR LF.
inline QByteArray PackageTrailer()
{
    return QByteArray("\0\0AS 1.40r4\r\n", 13);
}

// 0x89, the size (header and body less 8) low byte first, 0x00, the slot or kind byte, four 0x00,
// the body, the trailer.
inline QByteArray Package(const QByteArray &body, quint8 kindByte = 0x00)
{
    const int size = 9 + static_cast<int>(body.size()) - 8;
    QByteArray file;
    file += '\x89';
    file += static_cast<char>(size & 0xFF);
    file += static_cast<char>(size >> 8 & 0xFF);
    file += '\0';
    file += static_cast<char>(kindByte);
    file += QByteArray(4, '\0');
    return file + body + PackageTrailer();
}

// A body of `size` bytes that looks like picture data, CR and DC1 among them.
inline QByteArray PictureBody(int size)
{
    QByteArray body;
    for (int i = 0; i < size; ++i)
        body += static_cast<char>((i * 37 + 11) % 256);
    return body;
}

// One template line packed as the program packs it: runs of up to 31 equal characters as count and
// character (13 as 0x02), pairs and single characters as they are; the last character of a line never
// joins a run.
inline QByteArray PackLine(const QByteArray &line)
{
    QByteArray packed;
    qsizetype p = 0;
    while (p < line.size()) {
        int count = 1;
        while (p + 1 < line.size() - 1 && count < 31 && line[p + 1] == line[p]) {
            ++count;
            ++p;
        }
        const char c = line[p];
        if (count <= 2)
            packed += QByteArray(count, c);
        else if (count == 13)
            packed += QByteArray("\x02") + c;
        else
            packed += static_cast<char>(count) + QByteArray(1, c);
        ++p;
    }
    return packed + '\r';
}

// The P-file of a template text (CR LF lines) for a slot byte (0xC8, 0xD0, 0xE0, 0xF0).
inline QByteArray TemplatePFile(const QByteArray &text, quint8 slotByte)
{
    QByteArray body;
    QList<QByteArray> lines = text.split('\n');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    for (const QByteArray &line : lines)
        body += PackLine(line.endsWith('\r') ? line.chopped(1) : line);
    return Package(body, slotByte);
}

} // namespace kalvo::testing
