// The symbol file "variable.mas": definitions, comments, comma fields and the dump block.
#include "config/VariableFile.h"
#include "link/Errors.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo;
using config::VariableFile;

TEST(VariableFile, DefinitionLinesBecomeNameAndAddressEntries)
{
    const struct {
        const char *name;
        QByteArray text;
        QStringList entries;
    } cases[] = {
        {"address with H", "VOPT\tEQU 0E3H\t; accessory\r\n", {"VOPT#E3"}},
        {"address without H", "VOPT\tEQU E3\t; accessory\r\n", {"VOPT#E3"}},
        {"address at the line end", "VOPT\tEQU E3\r\n", {"VOPT#E3"}},
        {"bit number", "BDIREKT\tEQU 04\t; direct print\r\n", {"BDIREKT#04"}},
        {"comment line", ";VOPT\tEQU 0E3H\r\n", {}},
        {"EQU at the start", "EQU 0D3H\t; no name\r\n", {}},
        {"a comma ends a field", "VA\tEQU 0D0H\t; one, VB\tEQU 0D1H\r\n", {"VA#D0", "VB#D1"}},
        {"a field after a comma that is a comment", "VA\tEQU 0D0H\t; x,;VB\tEQU 0D1H\r\n", {"VA#D0"}},
        {"quoted field keeps its comma", "\"VA\tEQU 0D0H\t; x, y\"\r\n", {"VA#D0"}},
        {"LF only and no line end", "VA\tEQU 0D0H\nPVB\tEQU D1", {"VA#D0", "PVB#D1"}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(VariableFile::Parse(c.text, QStringLiteral("variable.mas")).entries(), c.entries) << c.name;
}

TEST(VariableFile, BlockCollectsTheCommentedDefinitionsBetweenTheMarkers)
{
    const QByteArray text = "VX\tEQU 0CFH\t; before\r\n"
                            ";--- ab hier speichern ---\r\n"
                            "VA\tEQU 0D0H\t; first, with comma\r\n"
                            "; a comment in the block\r\n"
                            "VB\tEQU D1\t; second\r\n"
                            ";--- bis hier speichern ---\r\n"
                            "VC\tEQU 0D2H\t; after\r\n";
    const VariableFile file = VariableFile::Parse(text, QStringLiteral("variable.mas"));
    EXPECT_EQ(file.blockEntries(), (QStringList{"VA\t first, with comma", "VB\t second"}));
    EXPECT_EQ(file.entries(), (QStringList{"VX#CF", "VA#D0", "VB#D1", "VC#D2"}));
}

TEST(VariableFile, MoreThanFiftyBlockEntriesRefuseTheDumpButNotTheList)
{
    for (const int count : {50, 51, 73}) {
        SCOPED_TRACE(count);
        QByteArray text = "; head\r\n; ab hier speichern\r\n";
        for (int i = 0; i < count; ++i)
            text += "V" + QByteArray::number(i) + "\tEQU 0D0H\t; x\r\n";
        text += "; bis hier speichern\r\nVLAST\tEQU 0E3H\r\n";
        const VariableFile file = VariableFile::Parse(text, QStringLiteral("variable.mas"));
        EXPECT_EQ(file.entries().size(), count + 1);
        EXPECT_EQ(file.entries().last(), QStringLiteral("VLAST#E3"));
        EXPECT_EQ(file.blockEntryCount(), count);
        if (count <= config::kMaxBlockEntries) {
            EXPECT_EQ(file.blockEntries().size(), count);
            continue;
        }
        try {
            file.blockEntries();
            FAIL() << count << " entries accepted for the dump";
        } catch (const link::FormatError &e) {
            const QString message = e.message();
            EXPECT_TRUE(message.contains(QStringLiteral("variable.mas"))) << message.toStdString();
            // Line 1 and 2 are the head, so the 51st entry is on line 53.
            EXPECT_TRUE(message.contains(QStringLiteral("Zeile 53"))) << message.toStdString();
            EXPECT_TRUE(message.contains(QStringLiteral("gefunden %1").arg(count))) << message.toStdString();
        }
    }
}

TEST(VariableFile, AFileFarLargerThanAnySymbolFileIsRefusedWithItsSize)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("variable.mas"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray line = "VA\tEQU 0D0H\t; a comment to fill the file\r\n";
    for (qint64 written = 0; written <= config::kMaxVariableFileSize; written += line.size())
        file.write(line);
    const qint64 size = file.size();
    file.close();
    try {
        VariableFile::Load(path);
        FAIL() << "a file of " << size << " bytes was read";
    } catch (const link::FormatError &e) {
        EXPECT_TRUE(e.message().contains(QString::number(size))) << e.message().toStdString();
    }
}

TEST(VariableFile, MissingFileAndDefinitionWithoutTabAreFormatErrors)
{
    QTemporaryDir dir;
    EXPECT_THROW(VariableFile::Load(dir.filePath(QStringLiteral("variable.mas"))), link::FormatError);
    EXPECT_THROW(VariableFile::Parse("VA EQU 0D0H\r\n", QStringLiteral("variable.mas")), link::FormatError);
}

TEST(VariableFile, DeliveredFileNamesTheBitsAndTheWholeBlock)
{
    const VariableFile file = VariableFile::Load(QStringLiteral(KALVO_DATA_DIR "/variable.mas"));
    ASSERT_EQ(file.blockEntries().size(), 48);
    EXPECT_TRUE(file.blockEntries()[3].startsWith(QStringLiteral("VMITBEZ\t"))); // D3
    EXPECT_TRUE(file.blockEntries()[2].startsWith(QStringLiteral("VUHVZ\t")));   // D2
    EXPECT_TRUE(file.blockEntries()[19].startsWith(QStringLiteral("VQUILL\t"))); // E3
    EXPECT_EQ(file.Find(QStringLiteral("bdirektdr")), QStringLiteral("BDIREKTDR#04"));
    EXPECT_EQ(file.Find(QStringLiteral("E3")), QStringLiteral("VQUILL#E3"));
    // Every block entry's address follows from its position: D0 + i.
    for (int i = 0; i < 48; ++i) {
        const QString address = QString::number(0xD0 + i, 16).toUpper();
        const QString name = file.blockEntries()[i].section(QLatin1Char('\t'), 0, 0);
        EXPECT_EQ(file.Find(name), name + QLatin1Char('#') + address);
    }
}
