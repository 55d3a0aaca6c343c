// Reading "sprachen.TXT" into a grid and switching the language table between its columns.
#include "link/LanguageTable.h"

#include "link/Errors.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <string>

using namespace kalvo::link;

namespace {

std::string Str(const QString &text)
{
    return text.toStdString();
}

// Row 0 heads the columns; row 1 holds one word per language, as the shipped file does.
const QByteArray kHeadRow = "key;deutsch;english;français;italiano;čeština;nederlands;español\r\n";
const QByteArray kWordRow = "word;Wort;word;mot;parola;slovo;woord;palabra\r\n";

LanguageGrid Grid(const QByteArray &bytes)
{
    return ReadLanguageGrid(bytes);
}

QByteArray Rows(int count)
{
    QByteArray bytes;
    for (int row = 0; row < count; ++row)
        bytes += "row " + QByteArray::number(row) + ";Text " + QByteArray::number(row) + "\r\n";
    return bytes;
}

} // namespace

TEST(LanguageGrid, CellsAndRowsFollowTheSeparatorAndLineRules)
{
    const struct {
        const char *what;
        QByteArray bytes;
        LanguageGrid expected;
    } cases[] = {
        {"CR LF", "a;b;c\r\nd;e\r\n", {{"a", "b", "c"}, {"d", "e"}}},
        {"CR alone", "a;b;c\rd;e\r", {{"a", "b", "c"}, {"d", "e"}}},
        {"last row without line end", "a;b;c\r\nd;e", {{"a", "b", "c"}, {"d", "e"}}},
        {"LF alone ends no row", "a;b\nc;d\r\n", {{"a", "bc", "d"}}},
        {"control bytes dropped",
         QByteArray("x\x01y\tz;\x1f"
                    "w\x00v\r\n",
                    11),
         {{"xyz", "wv"}}},
        {"row without a semicolon", "(frei)\r\nk;t\r\n", {{"(frei)"}, {"k", "t"}}},
        {"empty rows keep their place", "\r\n\r\nk;t\r\n", {{""}, {""}, {"k", "t"}}},
        {"empty cells in between", "k;;t;\r\n", {{"k", "", "t", ""}}},
        {"bytes above 127 pass unchanged", "k;\xc3\xa4\xe4\r\n", {{"k", "\xc3\xa4\xe4"}}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Grid(c.bytes), c.expected) << c.what;
}

TEST(LanguageTable, EachLanguageNamePicksItsColumnAndHelpFile)
{
    const LanguageGrid grid = Grid(kHeadRow + kWordRow);
    const struct {
        const char *name;
        const char *word;
        const char *helpFile;
    } cases[] = {
        {"deutsch", "Wort", "Q417G.html"},       {"englisch", "word", "Q417GB.html"},
        {"französisch", "mot", "Q417FR.html"},   {"italienisch", "parola", "Q417IT.html"},
        {"tschechisch", "slovo", "Q417TS.html"}, {"nederlandske", "woord", "Q417NL.html"},
        {"spain", "palabra", "Q417ES.html"},
    };
    for (const auto &c : cases) {
        LanguageTable table;
        ASSERT_TRUE(table.SetLanguage(QString::fromUtf8(c.name), grid)) << c.name;
        EXPECT_EQ(Str(table.text(1)), c.word) << c.name;
        EXPECT_EQ(Str(table.helpFile()), c.helpFile) << c.name;
        EXPECT_EQ(Str(table.language()), c.name);
        EXPECT_EQ(Str(table.text(0)), Str(DecodeLanguageCell(grid[0][FindLanguage(c.name)->column])))
            << "row 0 is copied like any other row";
    }
}

TEST(LanguageTable, UnknownNamesChangeNothing)
{
    const LanguageGrid grid = Grid(kHeadRow + kWordRow);
    // Menu entry names and other spellings are not language names: the switch compares exactly.
    const char *names[] = {"english", "Deutsch", "tschech", "france", "spanisch", "", "deutsch "};
    for (const char *name : names) {
        LanguageTable table;
        ASSERT_TRUE(table.SetLanguage(QStringLiteral("italienisch"), grid));
        EXPECT_FALSE(table.SetLanguage(QString::fromUtf8(name), Grid("k;x;x;x;x;x;x;x\r\n"))) << name;
        EXPECT_EQ(Str(table.text(1)), "parola") << name;
        EXPECT_EQ(Str(table.language()), "italienisch") << name;
        EXPECT_EQ(Str(table.helpFile()), "Q417IT.html") << name;
    }
}

TEST(LanguageTable, RowsWithoutTextForALanguageAreEmpty)
{
    // Row 1 is a comment only, row 2 stops after English, row 3 is full; row 4 on are not in the file.
    const LanguageGrid grid =
        Grid(kHeadRow + "(frei)\r\nshort;kurz;short\r\n" + QByteArray(kWordRow).replace("word;", "full;"));
    for (const LanguageColumn &language : LanguageColumns()) {
        LanguageTable table;
        ASSERT_TRUE(table.SetLanguage(language.name, grid));
        EXPECT_TRUE(table.text(1).isEmpty()) << Str(language.name);
        EXPECT_EQ(table.text(2).isEmpty(), language.column > 2) << Str(language.name);
        EXPECT_FALSE(table.text(3).isEmpty()) << Str(language.name);
        // The built-in German does not survive a switch: rows the file lacks are empty.
        EXPECT_TRUE(table.text(TxtMenuExit).isEmpty()) << Str(language.name);
    }
}

TEST(LanguageTable, AGridLongerThanTheTableIsRefusedAndTheTableKept)
{
    const struct {
        int rows;
        bool accepted;
    } cases[] = {{200, true}, {201, true}, {202, false}, {260, false}};
    for (const auto &c : cases) {
        LanguageTable table;
        const LanguageGrid grid = Grid(Rows(c.rows));
        if (c.accepted) {
            EXPECT_TRUE(table.SetLanguage(QStringLiteral("deutsch"), grid)) << c.rows;
            EXPECT_EQ(Str(table.text(c.rows - 1)), "Text " + std::to_string(c.rows - 1));
            continue;
        }
        EXPECT_THROW(table.SetLanguage(QStringLiteral("englisch"), grid), kalvo::link::FormatError) << c.rows;
        EXPECT_EQ(Str(table.text(TxtMenuSettings)), "Einstellungen") << c.rows;
        EXPECT_EQ(Str(table.language()), "deutsch") << c.rows;
        EXPECT_EQ(Str(table.helpFile()), "Q417G.html") << c.rows;
    }
}

TEST(LanguageTable, CellsDecodeAsUtf8OrElseAsWindows1252)
{
    const struct {
        QByteArray cell;
        const char *text; // UTF-8
    } cases[] = {
        {"Schlie\xc3\x9f"
         "en",
         "Schließen"}, // UTF-8 stays UTF-8
        {"\xc4\x8d"
         "e\xc5\xa1tina",
         "čeština"}, // characters Windows-1252 does not have
        {"Schlie\xdf"
         "en",
         "Schließen"}, // Windows-1252 ß
        {"n\xe4"
         "chste",
         "nächste"},                  // Windows-1252 ä
        {"\x80 5", "€ 5"},            // 0x80 is the euro sign in Windows-1252, not Latin-1
        {"\x84Zitat\x93", "„Zitat“"}, // Windows-1252 quotation marks
        {"Fu\xdf", "Fuß"},            // ends in a byte that could start UTF-8
        {"\xc3", "Ã"},                // a cut-off UTF-8 sequence is not UTF-8
        {"plain", "plain"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Str(DecodeLanguageCell(c.cell)), c.text) << c.cell.toHex().constData();

    // One file may mix both: each cell is judged on its own.
    LanguageTable table;
    ASSERT_TRUE(table.SetLanguage(QStringLiteral("deutsch"), Grid("a;\xe4\r\nb;\xc3\xa4\r\n")));
    EXPECT_EQ(Str(table.text(0)), "ä");
    EXPECT_EQ(Str(table.text(1)), "ä");
}

TEST(LanguageTable, ReadsTheFileAndKeepsTheBuiltInTextsWhenItIsMissing)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(kLanguageFileName);

    LanguageTable table;
    QString error;
    EXPECT_FALSE(table.SetLanguageFromFile(QStringLiteral("englisch"), path, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(error.contains(path)) << Str(error);
    EXPECT_EQ(Str(table.language()), "deutsch");
    EXPECT_EQ(Str(table.helpFile()), "Q417G.html");
    for (const TextDefault &entry : TextDefaults())
        EXPECT_EQ(Str(table.text(entry.id)), entry.german) << entry.key;

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(kHeadRow + kWordRow);
    file.close();
    error.clear();
    EXPECT_TRUE(table.SetLanguageFromFile(QStringLiteral("tschechisch"), path, &error));
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(Str(table.text(0)), "čeština");
    EXPECT_EQ(Str(table.text(1)), "slovo");
    EXPECT_EQ(Str(table.helpFile()), "Q417TS.html");
}

TEST(LanguageTable, AFileWithoutOneTextForTheLanguageIsToldAndTheTextsStay)
{
    const struct {
        const char *name;
        QByteArray bytes;
        const char *language;
        const char *told; // a part of the message
    } cases[] = {
        {"no semicolon anywhere", "Einstellungen\r\nSchnittstelle\r\n", "deutsch", "kein \";\""},
        {"empty file", "", "englisch", "kein \";\""},
        {"column heads only", kHeadRow, "englisch", "Spalte 3"},
        {"German only", kHeadRow + "word;Wort\r\nmore;mehr;\r\n", "englisch", "englisch"},
        {"blanks are no text", kHeadRow + "word;Wort; \r\n", "englisch", "englisch"},
    };
    QTemporaryDir dir;
    const QString path = dir.filePath(kLanguageFileName);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(c.bytes);
        file.close();
        LanguageTable table;
        QString error;
        EXPECT_FALSE(table.SetLanguageFromFile(QString::fromUtf8(c.language), path, &error));
        EXPECT_TRUE(error.contains(kLanguageFileName)) << Str(error);
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.told))) << Str(error);
        EXPECT_FALSE(table.fromFile());
        EXPECT_EQ(Str(table.language()), "deutsch");
        for (const TextDefault &entry : TextDefaults())
            EXPECT_EQ(Str(table.text(entry.id)), entry.german) << entry.key;
    }
}

TEST(LanguageTable, AFileFarLargerThanAnyLanguageFileIsRefusedWithItsSize)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(kLanguageFileName);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(kHeadRow + kWordRow);
    file.write(QByteArray(kMaxLanguageFileSize, '\n')); // dropped bytes: the rows would still fit
    const qint64 size = file.size();
    file.close();
    LanguageTable table;
    QString error;
    EXPECT_FALSE(table.SetLanguageFromFile(QStringLiteral("englisch"), path, &error));
    EXPECT_TRUE(error.contains(QString::number(size))) << Str(error);
    EXPECT_EQ(Str(table.text(TxtMenuSettings)), "Einstellungen");
}
