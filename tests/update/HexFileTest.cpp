// The firmware check: well-formed Intel HEX goes, anything else is refused with its line.
#include "UpdateScript.h"

#include "link/Errors.h"
#include "support/TestFiles.h"
#include "update/HexFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::update;

namespace kalvo::testing {
namespace {

// A well-known Intel HEX program, checksums computed by its assembler, not by us.
const QList<QByteArray> kKnownGood = {
    ":10010000214601360121470136007EFE09D2190140",
    ":100110002146017E17C20001FF5F16002148011928",
    ":10012000194E79234623965778239EDA3F01B2CAA7",
    ":100130003F0156702B5E712B722B732146013421C7",
    ":00000001FF",
};

QList<QByteArray> ElevenLines()
{
    return kKnownGood.mid(0, 4) + HexLines(6);
}

TEST(HexFile, WellFormedFilesPassWithEveryLineEndAndCase)
{
    const struct {
        const char *name;
        QByteArray bytes;
        int lines;
    } cases[] = {
        {"CR LF", JoinLines(ElevenLines()), 11},
        {"LF", JoinLines(ElevenLines(), "\n"), 11},
        {"no line end after the last record", JoinLines(ElevenLines()).chopped(2), 11},
        {"trailing empty lines", JoinLines(ElevenLines()) + "\r\n\r\n", 11},
        {"lower-case digits", JoinLines(ElevenLines()).toLower(), 11},
        {"address records",
         JoinLines(QList<QByteArray>{":020000040800F2", ":0400000508000131BD"} + ElevenLines()), 13},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const HexFile hex = HexFile::FromBytes(QStringLiteral("med.hex"), c.bytes);
        EXPECT_EQ(hex.lines().size(), c.lines);
        EXPECT_FALSE(hex.missing());
        EXPECT_NO_THROW(hex.Check());
        // The lines go out as they stand, without their line ends.
        EXPECT_EQ(hex.lines().back().toUpper(), QByteArray(kHexEnd));
    }
}

TEST(HexFile, ABrokenFileIsRefusedWithItsLineAndWhatIsWrong)
{
    QList<QByteArray> base = ElevenLines();
    const auto with = [&](int index, const QByteArray &line) {
        QList<QByteArray> lines = base;
        lines[index] = line;
        return lines;
    };
    const struct {
        const char *name;
        QList<QByteArray> lines;
        int line;
        const char *says;
    } cases[] = {
        {"no colon", with(2, kKnownGood[2].mid(1)), 3, "\":\" am Zeilenanfang"},
        {"a blank in front", with(2, " " + kKnownGood[2]), 3, "\":\" am Zeilenanfang"},
        {"empty line inside", with(4, ""), 5, "leere Zeile"},
        {"not a hex digit", with(1, QByteArray(kKnownGood[1]).replace(9, 1, "G")), 2,
         "nicht \"G\" an Stelle 10"},
        {"trailing blank", with(1, kKnownGood[1] + " "), 2, "nicht \" \""},
        {"odd number of digits", with(1, kKnownGood[1] + "0"), 2, "gerade Zahl"},
        {"too short for a record", with(1, ":0000"), 2, "mindestens"},
        {"byte count too small", with(0, ":0F" + kKnownGood[0].mid(3)), 1,
         "15 Datenbytes, wie die Länge 0F sagt, nicht 16"},
        {"checksum", with(3, kKnownGood[3].chopped(2) + "C8"), 4, "Prüfsumme C7, nicht C8"},
        {"record type 06", with(1, ":00000006FA"), 2, "Satztyp von 00 bis 05, nicht 06"},
        {"end record with data", with(10, ":0100000100FE"), 11, "0 Datenbytes im Satz vom Typ 01"},
        {"address record of 3 bytes", with(1, ":03000004080000F1"), 2, "2 Datenbytes im Satz vom Typ 04"},
        {"end record before the last line", with(5, kHexEnd), 6, "erst in der letzten Zeile"},
        {"no end record", base.mid(0, 10) + QList<QByteArray>{HexDataRecord(0x400, 1)}, 11,
         "letzte Zeile den Dateiende-Satz"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const HexFile hex = HexFile::FromBytes(QStringLiteral("/pkg/med.hex"), JoinLines(c.lines));
        try {
            hex.Check();
            ADD_FAILURE() << "accepted";
        } catch (const link::FormatError &e) {
            const QString message = e.message();
            EXPECT_TRUE(message.contains(QStringLiteral("med.hex, Zeile %1:").arg(c.line)))
                << message.toStdString();
            EXPECT_TRUE(message.contains(QString::fromUtf8(c.says))) << message.toStdString();
        }
    }
}

TEST(HexFile, TenLinesOrFewerCountAsMissingAndAreNotChecked)
{
    QTemporaryDir dir;
    const struct {
        const char *name;
        QByteArray bytes; // empty: no file
        bool missing;
    } cases[] = {
        {"no file", {}, true},
        {"ten lines", JoinLines(HexLines(9)), true},
        {"ten lines and empty ones after them", JoinLines(HexLines(9)) + "\r\n\r\n\r\n", true},
        {"eleven lines", JoinLines(HexLines(10)), false},
        {"eleven lines of rubbish", QByteArray("rubbish\n").repeated(11), false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = dir.filePath(QString::fromLatin1(c.name) + ".hex");
        if (!c.bytes.isEmpty()) {
            ASSERT_TRUE(WriteFile(path, c.bytes));
        }
        EXPECT_EQ(HexFile::Read(path).missing(), c.missing);
    }
}

TEST(HexFile, AnAbsurdlyLargeFileIsRefusedWithItsSizeBeforeItIsRead)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("med.hex"));
    ASSERT_TRUE(MakeLargeFile(path, kMaxHexFileBytes + 1));
    try {
        HexFile::Read(path);
        ADD_FAILURE() << "read";
    } catch (const link::FormatError &e) {
        EXPECT_TRUE(e.message().contains(QString::number(kMaxHexFileBytes + 1))) << e.message().toStdString();
    }
}

} // namespace
} // namespace kalvo::testing
