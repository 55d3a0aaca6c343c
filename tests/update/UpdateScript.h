// Update files and the tester's side of an update, for the scripted transport.
#pragma once

#include "link/Link.h"
#include "support/ScriptedTransport.h"
#include "update/Transfers.h"

#include "support/TestFiles.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kalvo::testing {

// A data record of Intel HEX: 16 bytes at `address`, with its checksum.
inline QByteArray HexDataRecord(int address, unsigned char fill)
{
    QByteArray record;
    record += char(16);
    record += char((address >> 8) & 0xFF);
    record += char(address & 0xFF);
    record += char(0);
    record += QByteArray(16, char(fill));
    int sum = 0;
    for (char c : record)
        sum += static_cast<unsigned char>(c);
    record += char((0x100 - (sum & 0xFF)) & 0xFF);
    return ':' + record.toHex().toUpper();
}

constexpr char kHexEnd[] = ":00000001FF";

// A firmware of `dataLines` data records and the end record.
inline QList<QByteArray> HexLines(int dataLines)
{
    QList<QByteArray> lines;
    for (int i = 0; i < dataLines; ++i)
        lines << HexDataRecord(i * 16, static_cast<unsigned char>(i * 37));
    lines << kHexEnd;
    return lines;
}

inline QByteArray JoinLines(const QList<QByteArray> &lines, const QByteArray &end = "\r\n")
{
    QByteArray bytes;
    for (const QByteArray &line : lines)
        bytes += line + end;
    return bytes;
}

// `size` bytes of every value, as a package holds them (DC1, CR and EOT included).
inline QByteArray PackageBytes(qsizetype size, int seed = 1)
{
    QByteArray bytes;
    for (qsizetype i = 0; i < size; ++i)
        bytes += static_cast<char>((i * 131 + seed * 7) & 0xFF);
    return bytes;
}

// The stream of `bytes` as the transfer writes it, block by block; returns the last block's step.
inline ScriptedTransport::Step &ExpectStream(ScriptedTransport &transport, const QByteArray &bytes)
{
    ScriptedTransport::Step *last = nullptr;
    for (qsizetype offset = 0; offset < bytes.size(); offset += update::kStreamBlockBytes)
        last = &transport.Expect(bytes.mid(offset, update::kStreamBlockBytes));
    return *last;
}

// A command answered with its echo and ".Y", as a setting is.
inline void ExpectSetting(ScriptedTransport &transport, const QByteArray &command)
{
    transport.Expect(command + '\r').Reply(command + ".Y\r\n\x11", std::chrono::milliseconds(5));
}

inline void ExpectRestart(ScriptedTransport &transport)
{
    ExpectSetting(transport, "rst!0");
    transport.Expect(QByteArray(1, link::kEOT));
}

// "dis?", "ver?", "idn?" with the given firmware version.
inline void ExpectIdentity(ScriptedTransport &transport, const QByteArray &version = "1.52")
{
    transport.Expect("dis?\r").Reply("dis? 00.Y\r\n\x11");
    transport.Expect("ver?\r").Reply(
        "ver?;01.02.09 10:00;01.02.09 10:00;01.02.09 10:00;01.02.09 10:00;01.02.09 10:00\r\n\x11");
    transport.Expect("idn?\r").Reply("idn?;Kalvomer 9000;0471 1203 5567;KALVO-01;Firmware V " + version +
                                     "\r\n\x11");
}

// A test with a folder of its own for the files it sends.
class FolderTest : public ::testing::Test {
protected:
    // Writes `bytes` to `name` in the folder; returns its path.
    QString Put(const QString &name, const QByteArray &bytes)
    {
        const QString path = m_dir.filePath(name);
        EXPECT_TRUE(WriteFile(path, bytes));
        return path;
    }
    QTemporaryDir m_dir;
};

// The loader's report after a package: erase report, programming report, DC1.
constexpr char kPackageReport[] = "\r\nErasing\r\nProgramming\r\n\x11";

} // namespace kalvo::testing
