// The language file and the help pages that ship with the program, checked against the rows it uses.
#include "link/LanguageTable.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QStringDecoder>
#include <gtest/gtest.h>
#include <string>

using namespace kalvo::link;

namespace {

const QString kDataDir = QStringLiteral(KALVO_DATA_DIR);

std::string Str(const QString &text)
{
    return text.toStdString();
}

QByteArray ReadDataFile(const QString &name)
{
    QFile file(kDataDir + QLatin1Char('/') + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

bool IsUtf8(const QByteArray &bytes)
{
    // Stateless: a sequence cut off at the end is an error too, not kept for a next chunk.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes); // decoding happens on conversion to QString
    return !text.isNull() && !utf8.hasError();
}

// The shipped grid, read by the program's own rules.
const LanguageGrid &ShippedGrid()
{
    static const LanguageGrid grid = ReadLanguageGrid(ReadDataFile(kLanguageFileName));
    return grid;
}

// The text of a used row in one language, or empty when the cell is missing.
QString Cell(int row, int column)
{
    const LanguageGrid &grid = ShippedGrid();
    if (row >= grid.size() || column >= grid[row].size())
        return {};
    return DecodeLanguageCell(grid[row][column]);
}

// The captions a help page refers to; they must read exactly as the program shows them.
constexpr TextId kCaptionsInHelp[] = {
    TxtMenuSettings,
    TxtMenuConnection,
    TxtMenuConfig,
    TxtMenuClock,
    TxtMenuName,
    TxtMenuService,
    TxtMenuLanguage,
    TxtMenuHelp,
    TxtMenuHelpContents,
    TxtMenuInfo,
    TxtMenuExit,
    TxtButtonOk,
    TxtButtonStore,
    TxtButtonCancel,
    TxtServiceTerminal,
    TxtServiceClear,
    TxtServiceLogAscii,
    TxtServiceLogHex,
    TxtServiceScript,
    TxtServiceScriptStart,
    TxtServiceScriptResult,
    TxtServiceAllHelp,
    TxtServiceNextHelp,
    TxtServiceHelpStop,
    TxtServicePrintDirect,
    TxtServiceCommand,
    TxtServiceAnswer,
    TxtServiceView,
    TxtModemStored,
    TxtMenuRecords,
    TxtMenuSpecifications,
    TxtMenuArchive,
    TxtMenuWithDesignation,
    TxtMenuQuillbank,
    TxtMenuRestoreCalibration,
    TxtMenuLimits,
    TxtMenuLimitShortCircuit,
    TxtMenuLimitReferenceVoltage,
    TxtMenuLimitHighVoltageTime,
    TxtMenuModem,
    TxtLabelTelephone1,
    TxtLabelTelephone2,
    TxtLabelModemInit,
    TxtServiceLoadVariables,
    TxtServiceDumpConfiguration,
    TxtServiceStoreConfiguration,
    TxtServiceBackupCalibration,
    TxtServiceVariables,
    TxtServiceResetD3,
};

// A page as the reader sees its words: runs of white space count as one blank.
QString PageText(const QByteArray &html)
{
    return QString::fromUtf8(html).replace(QRegularExpression(QStringLiteral("\\s+")), QStringLiteral(" "));
}

} // namespace

TEST(LanguageData, FileIsUtf8WithCrLfAndFitsTheTable)
{
    const QByteArray bytes = ReadDataFile(kLanguageFileName);
    ASSERT_FALSE(bytes.isEmpty()) << "missing " << Str(kDataDir) << "/sprachen.TXT";
    EXPECT_TRUE(IsUtf8(bytes));
    // A checkout that turned CR LF into LF would leave one single row.
    EXPECT_EQ(bytes.count('\r'), bytes.count('\n'));
    EXPECT_EQ(bytes.count("\r\n"), bytes.count('\n'));
    EXPECT_LE(ShippedGrid().size(), LanguageTable::kEntries);
    EXPECT_GT(ShippedGrid().size(), static_cast<qsizetype>(TextDefaults().back().id));

    ASSERT_FALSE(ShippedGrid().isEmpty());
    EXPECT_EQ(ShippedGrid()[0].size(), 1 + static_cast<qsizetype>(LanguageColumns().size()))
        << "column heads";
    EXPECT_EQ(Str(Cell(0, 0)), "key");
}

TEST(LanguageData, EveryUsedRowStandsAtItsNumberWithTheBuiltInGerman)
{
    for (const TextDefault &entry : TextDefaults()) {
        EXPECT_EQ(Str(Cell(entry.id, 0)), entry.key) << "row " << entry.id;
        EXPECT_EQ(Str(Cell(entry.id, 1)), entry.german) << "row " << entry.id << " (" << entry.key << ")";
    }
    // Rows the program does not use hold a comment at most, so that no text is read at a wrong number.
    QSet<int> used;
    for (const TextDefault &entry : TextDefaults())
        used.insert(entry.id);
    for (int row = 1; row < ShippedGrid().size(); ++row) {
        if (used.contains(row))
            continue;
        EXPECT_EQ(ShippedGrid()[row].size(), 1) << "unused row " << row << " has language cells";
    }
}

TEST(LanguageData, EveryUsedRowHasATextInEveryLanguage)
{
    const QString path = kDataDir + QLatin1Char('/') + kLanguageFileName;
    for (const LanguageColumn &language : LanguageColumns()) {
        LanguageTable table;
        QString error;
        ASSERT_TRUE(table.SetLanguageFromFile(language.name, path, &error)) << Str(error);
        for (const TextDefault &entry : TextDefaults()) {
            const QString text = table.text(entry.id);
            EXPECT_FALSE(text.isEmpty())
                << Str(language.name) << " row " << entry.id << " (" << entry.key << ")";
            EXPECT_EQ(Str(text), Str(text.trimmed()))
                << Str(language.name) << " row " << entry.id << ": blank at an end";
        }
    }
}

TEST(LanguageData, EveryLanguageKeepsThePlaceholdersOfTheGermanText)
{
    // A translation that lost "%2" would show the bare placeholder, or a value in the wrong place.
    static const QRegularExpression placeholder(QStringLiteral("%\\d"));
    const auto placeholders = [](const QString &text) {
        QStringList found;
        for (const QRegularExpressionMatch &m : placeholder.globalMatch(text))
            found << m.captured();
        found.sort();
        return found;
    };
    for (const TextDefault &entry : TextDefaults()) {
        const QStringList german = placeholders(QString::fromUtf8(entry.german));
        for (const LanguageColumn &language : LanguageColumns())
            EXPECT_EQ(placeholders(Cell(entry.id, language.column)), german)
                << Str(language.name) << " row " << entry.id << " (" << entry.key << ")";
    }
}

TEST(LanguageData, LongTextsDifferBetweenLanguages)
{
    // Short captions may rightly agree (OK, Terminal, Service, log ASCII); a sentence that reads the
    // same in two languages was copied and not translated.
    for (const TextDefault &entry : TextDefaults()) {
        for (const LanguageColumn &a : LanguageColumns()) {
            const QString text = Cell(entry.id, a.column);
            if (text.size() <= 20)
                continue;
            for (const LanguageColumn &b : LanguageColumns()) {
                if (b.column <= a.column)
                    continue;
                EXPECT_NE(Str(text), Str(Cell(entry.id, b.column)))
                    << "row " << entry.id << " (" << entry.key << ") is the same in " << Str(a.name)
                    << " and " << Str(b.name);
            }
        }
    }
}

TEST(LanguageData, HelpPagesAreSelfContainedUtf8)
{
    for (const LanguageColumn &language : LanguageColumns()) {
        const QByteArray html = ReadDataFile(language.helpFile);
        ASSERT_FALSE(html.isEmpty()) << "missing " << Str(language.helpFile);
        EXPECT_TRUE(IsUtf8(html)) << Str(language.helpFile);
        EXPECT_TRUE(html.contains("<meta charset=\"utf-8\">")) << Str(language.helpFile);
        for (const char *forbidden : {"<script", "<img", "<link", "src="})
            EXPECT_FALSE(html.contains(forbidden)) << Str(language.helpFile) << " contains " << forbidden;
    }
}

TEST(LanguageData, HelpPagesHaveTheChaptersOfTheGermanPageAndLinksThatLead)
{
    // The windows open the help at these chapters (F1), whatever the language.
    const QStringList windowChapters = {QStringLiteral("update"), QStringLiteral("pruefablaeufe"),
                                        QStringLiteral("archiv")};
    static const QRegularExpression chapter(QStringLiteral("<h2><a name=\"([^\"]+)\"></a>(\\d+)\\. "));
    static const QRegularExpression anchor(QStringLiteral("<a name=\"([^\"]+)\">"));
    static const QRegularExpression link(QStringLiteral("<a href=\"([^\"]*)\">"));
    const auto chaptersOf = [](const QString &page) {
        QStringList names;
        for (const QRegularExpressionMatch &m : chapter.globalMatch(page)) {
            names << m.captured(1);
            EXPECT_EQ(m.captured(2).toInt(), names.size()) << "chapter " << Str(m.captured(1)) << " numbered";
        }
        return names;
    };
    const QStringList german = chaptersOf(QString::fromUtf8(ReadDataFile(QStringLiteral("Q417G.html"))));
    for (const QString &name : windowChapters)
        ASSERT_TRUE(german.contains(name)) << "Q417G.html has no chapter #" << Str(name);
    for (const LanguageColumn &language : LanguageColumns()) {
        const QString page = QString::fromUtf8(ReadDataFile(language.helpFile));
        const QStringList chapters = chaptersOf(page);
        ASSERT_EQ(chapters.size(), german.size()) << Str(language.helpFile);
        for (const QString &name : windowChapters)
            EXPECT_EQ(chapters.indexOf(name), german.indexOf(name))
                << Str(language.helpFile) << " #" << Str(name);
        QSet<QString> anchors;
        for (const QRegularExpressionMatch &m : anchor.globalMatch(page))
            anchors.insert(m.captured(1));
        // Links stay inside the page (the help window opens nothing else) and lead to a chapter.
        for (const QRegularExpressionMatch &m : link.globalMatch(page)) {
            const QString target = m.captured(1);
            EXPECT_TRUE(target.startsWith(QLatin1Char('#')) && anchors.contains(target.mid(1)))
                << Str(language.helpFile) << " links to " << Str(target);
        }
    }
}

TEST(LanguageData, HelpPagesUseTheCaptionsOfTheirLanguage)
{
    for (const LanguageColumn &language : LanguageColumns()) {
        const QString page = PageText(ReadDataFile(language.helpFile));
        ASSERT_FALSE(page.isEmpty()) << Str(language.helpFile);
        EXPECT_TRUE(page.contains(Cell(TxtHelpWindow, language.column)))
            << Str(language.helpFile) << " title";
        for (TextId id : kCaptionsInHelp) {
            const QString caption = Cell(id, language.column);
            EXPECT_TRUE(!caption.isEmpty() && page.contains(caption))
                << Str(language.helpFile) << " lacks \"" << Str(caption) << "\" (row " << id << ")";
        }
        // A page begun as a copy of another language's page still shows that language's menu name.
        for (const LanguageColumn &other : LanguageColumns()) {
            const QString foreign = Cell(TxtMenuSettings, other.column);
            if (foreign == Cell(TxtMenuSettings, language.column))
                continue;
            const QRegularExpression word(
                QStringLiteral("\\b%1\\b").arg(QRegularExpression::escape(foreign)));
            EXPECT_FALSE(page.contains(word)) << Str(language.helpFile) << " has the " << Str(other.name)
                                              << " caption \"" << Str(foreign) << "\"";
        }
    }
}
