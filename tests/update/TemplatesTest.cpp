// Print templates read from the tester into ".pr" files, and stored back through a P-file.
#include "UpdateScript.h"

#include "../link/LinkFixture.h"
#include "link/Errors.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"
#include "support/TestFiles.h"
#include "update/PFile.h"
#include "update/Templates.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::link;
using namespace kalvo::update;

namespace kalvo::testing {
namespace {

TEST(Templates, TheTextStartsAfterBackslashVAndKeepsOnlyPrintableBytesAndLineEnds)
{
    const struct {
        const char *name;
        QByteArray answer;
        QByteArray text;
    } cases[] = {
        {"after \\v", "prn?1\\vKopf\r\nZeile\r\n\x11", "Kopf\r\nZeile\r\n"},
        {"closed by .Y: kept", "prn?1 Vorlage 1 \\vKopf\r\nZeile\r\n.Y\r\n\x11", "Kopf\r\nZeile\r\n.Y\r\n"},
        {".Y inside the text stays", "prn?1\\va.Y\r\nb\r\n\x11", "a.Y\r\nb\r\n"},
        {"no \\v, closed by .Y without line end", "prn?2 .Y\x11", "prn?2 .Y"},
        {"echo with a blank, in capitals", "PRN? 2\\v@1 @2\n\x11", "@1 @2\n"},
        {"no \\v: the whole answer", "prn?3\r\nText\r\n\x11", "prn?3\r\nText\r\n"},
        {"a second \\v belongs to the text", "prn?0\\va\\vb\x11", "a\\vb"},
        {"bell, tab, ENQ and FF dropped; 8-bit kept", "\\vA\x07\tB\x05\x0C\xC4\x84\xFF\x11",
         "AB\xC4\x84\xFF"},
        {"backslash without v", "prn?4\\x\x11", "prn?4\\x"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(EscapeBytes(TemplateText(c.answer)), EscapeBytes(c.text)) << c.name;
    EXPECT_EQ(TemplateReadCommand(0), QByteArray("prn?0"));
    EXPECT_EQ(TemplateReadCommand(4), QByteArray("prn?4"));
    EXPECT_EQ(TemplateFileName(3), QStringLiteral("3.pr"));
}

// The five reads, "prn?0" to "prn?4", each answered with `answers[k]`.
void ExpectTemplates(ScriptedTransport &transport, const std::array<QByteArray, 5> &answers)
{
    for (int k = 0; k < 5; ++k) {
        auto &step = transport.Expect("prn?" + QByteArray::number(k) + '\r');
        // Odd chunks: byte by byte for one of them.
        if (k == 3)
            step.ReplyByteByByte(answers[k]);
        else
            step.Reply(answers[k]);
    }
}

TEST(Templates, AllFiveAreReadAndTheChosenOneIsKept)
{
    const std::array<QByteArray, 5> answers = {
        "prn?0 Vorlage 0 \\vUniversal\r\n.Y\r\n\x11",
        "PRN? 1:\\v#01 #02\r\n\x11",
        "prn?2\r\nKurz\r\n@1\r\n\x11",           // no "\v": all of it
        "prn?3\\vMedizin\x07\r\nEnde.Y\r\n\x11", // a text that ends in ".Y" and a line end
        "\\vWerkstatt\x11",
    };
    const QByteArray texts[] = {"Universal\r\n.Y\r\n", "#01 #02\r\n", "prn?2\r\nKurz\r\n@1\r\n",
                                "Medizin\r\nEnde.Y\r\n", "Werkstatt"};
    QTemporaryDir dir;
    for (int k = 0; k < 5; ++k) {
        SCOPED_TRACE(k);
        ScriptedLink s;
        ExpectTemplates(s.transport, answers);
        const QString path = dir.filePath(TemplateFileName(k));
        EXPECT_TRUE(SaveTemplateFromTester(s.link, k, path));
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(EscapeBytes(ReadFile(path)), EscapeBytes(texts[k]));
    }
    ScriptedLink s;
    ExpectTemplates(s.transport, answers);
    const auto table = ReadTemplates(s.link);
    ASSERT_TRUE(table.has_value());
    for (int k = 0; k < 5; ++k)
        EXPECT_EQ(table->at(static_cast<size_t>(k)), texts[k]) << k;
}

TEST(Templates, AReadTheTesterRefusesWritesNoFileButGarbleIsATemplate)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(TemplateFileName(2));
    const QByteArray good = "prn?k\\vText\r\n\x11";
    const struct {
        const char *name;
        int at; // which of the five is answered with `answer`
        QByteArray answer;
        bool written;
        QByteArray text; // of template 2, when written
    } cases[] = {
        {"template 2 refused", 2, "prn?2 Protokoll .N\r\n\x11", false, {}},
        {"another template refused", 4, "prn?4 Protokoll .N\r\n\x11", false, {}},
        {"closed by .Nx", 2, "prn?2.Nx\r\n\x11", false, {}},
        {"closed by .N", 0, "PRN?0 .N\x11", false, {}},
        {"garbled: all of it", 2, "\x8f#q\x03z\x11", true, "\x8f#qz"},
        {".N inside a text is no refusal", 2,
         "prn?2\\vPr\xFC"
         "f.Nr.\r\n\x11",
         true,
         "Pr\xFC"
         "f.Nr.\r\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(WriteFile(path, "old template"));
        std::array<QByteArray, 5> answers;
        answers.fill(good);
        answers[static_cast<size_t>(c.at)] = c.answer;
        ScriptedLink s;
        ExpectTemplates(s.transport, answers);
        EXPECT_EQ(SaveTemplateFromTester(s.link, 2, path), c.written);
        EXPECT_TRUE(s.transport.allExpectationsMet()) << "the others are read all the same";
        EXPECT_EQ(ReadFile(path), c.written ? c.text : QByteArray("old template"));
        EXPECT_EQ(s.link.refusals(), c.written ? 0 : 1);
        EXPECT_EQ(s.prompter.messages.size(), c.written ? 0u : 1u);
    }
    {
        ASSERT_TRUE(WriteFile(path, "old template"));
        ScriptedLink s;
        s.transport.close();
        EXPECT_FALSE(SaveTemplateFromTester(s.link, 2, path));
        EXPECT_EQ(s.prompter.messages.size(), 1u); // the port is not open
        EXPECT_EQ(ReadFile(path), QByteArray("old template"));
    }
}

TEST(Templates, StoringSavesTheTextThenLoadsItsPFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("4.pr"));
    QList<QByteArray> lines;
    for (int i = 0; i < 20; ++i)
        lines << "Zeile " + QByteArray::number(i) + " ......";
    const QByteArray text = JoinLines(lines);
    ScriptedLink s;
    s.transport.Expect("\x04\r");
    ExpectSetting(s.transport, "idn!99");
    ExpectSetting(s.transport, "kal!ein");
    ExpectSetting(s.transport, "kal!upd3");
    ExpectStream(s.transport, BuildPFile(lines, 4).bytes).Reply(kPackageReport);
    ExpectRestart(s.transport);
    EXPECT_TRUE(StoreTemplate(s.link, s.prompter, text, path, 4));
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_EQ(ReadFile(path), text);
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("4.P"))));
}

} // namespace
} // namespace kalvo::testing
