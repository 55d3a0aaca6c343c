// The virtual tester's print templates: their texts, how records fill them, and P-files that replace them.
#include "UpdateFiles.h"
#include "link/Link.h"
#include "link/PortNames.h"
#include "link/TextRules.h"
#include "sim/PrintRenderer.h"
#include "sim/RecordText.h"
#include "sim/SampleRecords.h"
#include "sim/SampleTemplates.h"
#include "sim/SimTransport.h"
#include "sim/TemplatePFile.h"
#include "sim/UpdateLoader.h"
#include "sim/VirtualTester.h"
#include "support/ScriptedPrompter.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo;
using namespace std::chrono_literals;
using kalvo::testing::Package;
using kalvo::testing::PackageTrailer;
using kalvo::testing::TemplatePFile;
using sim::UpdateLoader;

namespace {

constexpr char kDC1 = '\x11';

QByteArray Answer(const QByteArray &text)
{
    return text + "\r\n" + kDC1;
}

// A template of a user's own: umlauts, box lines, long runs, a run of exactly 13, a line ending in
// three equal characters and an empty line.
const QByteArray kOwnTemplate = "\xC9" + QByteArray(40, '\xCD') +
                                "\xBB\r\n"
                                "Pr\x81"
                                "fbericht f\x81r #04\r\n"
                                "=============x\r\n"
                                "\r\n"
                                "Ident #03       Ergebnis #ER\r\n"
                                "R-SL #07       #08\r\n"
                                "Ende ...\r\n";

struct Tester {
    Tester() { Line("kal!ein"); }
    QByteArray Line(const QByteArray &line) { return Send(line + '\r'); }
    QByteArray Send(const QByteArray &bytes)
    {
        tester.feed(bytes);
        clock.advance(5s); // past the idle end and the reports of a package
        return tester.takeOutput(clock.now());
    }
    QByteArray Load(const QByteArray &pfile)
    {
        EXPECT_EQ(Line("kal!upd3"), Answer("kal!upd3.Y"));
        return Send(pfile);
    }
    // The text behind "\v" of the answer to "prn?k", without the DC1 that ends it.
    QByteArray TemplateText(int k)
    {
        const QByteArray answer = Line("prn?" + QByteArray::number(k));
        const qsizetype mark = answer.indexOf("\\v");
        EXPECT_GE(mark, 0) << answer.toStdString();
        EXPECT_TRUE(answer.endsWith("\r\n\x11"));
        return answer.mid(mark + 2).chopped(1);
    }

    link::ManualClock clock;
    sim::VirtualTester tester{clock};
};

} // namespace

TEST(PrintTemplates, PrnQueryAnswersTheTemplateTextBehindTheMark)
{
    Tester t;
    for (int k = 0; k < sim::kPrintTemplates; ++k) {
        const QByteArray text = sim::SampleTemplateText(k);
        EXPECT_EQ(t.Line("prn?" + QByteArray::number(k)),
                  Answer("prn?" + QByteArray::number(k) + " Vorlage " + QByteArray::number(k) + " \\v" +
                         text.chopped(2)));
        EXPECT_TRUE(text.endsWith("\r\n")) << k;
        EXPECT_EQ(text.count('\n'), text.count("\r\n")) << k;
        EXPECT_TRUE(text.contains('\xC4') && text.contains("#ER")) << k;
        for (char c : text)
            EXPECT_TRUE(static_cast<quint8>(c) >= 0x20 || c == '\r' || c == '\n') << k;
    }
    EXPECT_TRUE(sim::SampleTemplateText(1).contains("Ger\x84tepr\x81"
                                                    "fung"));
    EXPECT_TRUE(t.Line("prn? 2").startsWith("prn? 2 Vorlage 2 \\v" + sim::SampleTemplateText(2)));
    EXPECT_TRUE(t.Line("PRN?4").startsWith("PRN?4 Vorlage 4 \\v"));
    for (const char *refused : {"prn?5", "prn?x", "prn?-1", "prn?12345"})
        EXPECT_EQ(t.Line(refused), Answer(QByteArray(refused) + " Protokoll .N")) << refused;
    EXPECT_EQ(t.Line("prn?"), Answer("prn? 1.Y")) << "without a number: the template chosen";
}

TEST(PrintTemplates, MarkersTakeTheRoomOfTheirBlanksAndEmptyRowsAreLeftOut)
{
    const QByteArray record = sim::SampleTestRecords().first();
    const sim::RecordText fields(record);
    ASSERT_EQ(fields.Field(3), "E-0815");
    ASSERT_FALSE(fields.Field(11).isEmpty());
    ASSERT_TRUE(fields.Field(7).isEmpty() && fields.Field(8).isEmpty());
    struct Case {
        QByteArray line;
        QByteArray printed; // nothing: the line is left out
    };
    const Case cases[] = {
        {"Id #03      |", "Id E-0815   |"},
        {"Id #03   |", "Id E-081 |"},
        {"Id #03|", "Id E-0|"},
        {"Id #03", "Id E-0815"},
        {"#ER / #VS", fields.Verdict().left(3) + " / " + fields.RegulationName()},
        {"SK #SK  AT #AT", "SK " + QByteArray::number(fields.ProtectionClass()) + "    AT -"},
        {"R-SL #07      #08", ""},
        {"R-ISO #11       #12", "R-ISO " + fields.Field(11).leftJustified(10) + fields.Field(12)},
        {"Preis # 5, #1x, #75, #00, #99", "Preis # 5, #1x, #75, #00, #99"},
        {"", ""},
    };
    for (const Case &c : cases) {
        const QByteArray printed = sim::PrintRenderer::Render(c.line + "\r\n", record);
        EXPECT_EQ(printed, c.printed.isEmpty() && !c.line.isEmpty() ? QByteArray() : c.printed + "\r\n")
            << c.line.toStdString();
    }
    // Lines that end in LF alone, or not at all, print with CR LF.
    EXPECT_EQ(sim::PrintRenderer::Render("a\nb", record), "a\r\nb\r\n");
}

TEST(PrintTemplates, BodyUnpacksRunsAndLinesLikeThePacker)
{
    struct Case {
        QByteArray body;
        QByteArray text;   // when it unpacks
        QByteArray reason; // when it is refused
    };
    const Case cases[] = {
        {"ab\r", "ab\r\n", ""},
        {"\x02x\r", QByteArray(13, 'x') + "\r\n", ""},
        {"\x05-\x1F=y\r", QByteArray(5, '-') + QByteArray(31, '=') + "y\r\n", ""},
        {"\x0A\xC4\r\r", QByteArray(10, '\xC4') + "\r\n\r\n", ""},
        {"\x03\x84\x81\r", "\x84\x84\x84\x81\r\n", ""},
        {"", "", ""},
        {"ab", "", "Zeile ohne Ende"},
        {"ab\r\x05", "", "Zeichen unzul\x84ssig"},
        {"\x05\r", "", "Zeichen unzul\x84ssig"},
        {"\x05\x11\r", "", "Zeichen unzul\x84ssig"},
        {QByteArray("a\x01\r"), "", "Zeichen unzul\x84ssig"},
        {QByteArray(1, '\0') + "\r", "", "Zeichen unzul\x84ssig"},
    };
    for (const Case &c : cases) {
        QByteArray reason;
        const auto text = sim::UnpackTemplateBody(c.body, &reason);
        const std::string name = link::EscapeBytes(c.body).toStdString();
        EXPECT_EQ(text.has_value(), c.reason.isEmpty()) << name;
        EXPECT_EQ(text.value_or(""), c.text) << name;
        EXPECT_EQ(reason, c.reason) << name;
    }
}

TEST(PrintTemplates, PFileHeaderIsCheckedBeforeAnythingIsStored)
{
    const QByteArray good = TemplatePFile(kOwnTemplate, 0xD0);
    const auto patched = [&](int offset, char byte) {
        QByteArray file = good;
        file[offset] = byte;
        return file;
    };
    // 2048 packed bytes make a size of 2049: too long for template 1, not for template 2.
    const QByteArray body2048 = QByteArray("ab").repeated(1023) + "x\r";
    struct Case {
        const char *name;
        QByteArray file;
        int slot; // 0: refused
        QByteArray reason;
    };
    const Case cases[] = {
        {"good", good, 2, ""},
        {"without the writer's CR LF", good.chopped(2), 2, ""},
        {"slot byte of template 1", patched(4, '\xC8'), 1, ""},
        {"slot byte of template 4", patched(4, '\xF0'), 4, ""},
        {"unknown slot byte", patched(4, '\xC9'), 0, "Vorlage C9 unbekannt"},
        {"not a package", patched(0, '\x88'), 0, "Kopf fehlerhaft"},
        {"byte 3 not zero", patched(3, '\x01'), 0, "Kopf fehlerhaft"},
        {"byte 8 not zero", patched(8, '\x01'), 0, "Kopf fehlerhaft"},
        {"size one too large", patched(1, static_cast<char>(good[1] + 1)), 0, "L\x84nge falsch"},
        {"size one too small", patched(1, static_cast<char>(good[1] - 1)), 0, "L\x84nge falsch"},
        {"no trailer", good.chopped(13), 0, "L\x84nge falsch"},
        {"bytes behind the trailer", good + "x", 0, "L\x84nge falsch"},
        {"header cut short", good.left(7), 0, "Kopf fehlerhaft"},
        {"2049 for template 1", Package(body2048, 0xC8), 0, "Vorlage zu lang"},
        {"2049 for template 2", Package(body2048, 0xD0), 2, ""},
        {"4097 for template 3", Package(QByteArray("ab").repeated(2047) + "xy\r", 0xE0), 0,
         "Vorlage zu lang"},
    };
    for (const Case &c : cases) {
        QByteArray reason;
        const auto upload = sim::UnpackTemplatePFile(c.file, &reason);
        EXPECT_EQ(upload ? upload->slot : 0, c.slot) << c.name;
        EXPECT_EQ(reason, c.reason) << c.name;
        if (upload && c.slot == 2 && c.file.size() < 2000) {
            EXPECT_EQ(upload->text, kOwnTemplate) << c.name;
        }
    }
}

TEST(PrintTemplates, LoadedPFileReplacesItsSlotForQueriesAndPrintsAndSurvivesARestart)
{
    for (int k = 1; k <= 4; ++k) {
        Tester t;
        const QByteArray pictures = t.tester.model().versionDates()[2];
        const quint8 slotByte = std::array<quint8, 4>{0xC8, 0xD0, 0xE0, 0xF0}[static_cast<size_t>(k - 1)];
        EXPECT_EQ(t.Load(TemplatePFile(kOwnTemplate, slotByte)), "Erasing ...\r\n... Programming\r\n\x11");
        EXPECT_EQ(t.TemplateText(k), kOwnTemplate) << k;
        for (int other = 0; other < sim::kPrintTemplates; ++other) {
            if (other != k) {
                EXPECT_EQ(t.TemplateText(other), sim::SampleTemplateText(other)) << k << " " << other;
            }
        }
        const QByteArray printed = t.Line("prn!" + QByteArray::number(k) + ",1");
        EXPECT_TRUE(printed.contains("Ident E-0815    Ergebnis bestanden\r\n")) << printed.toStdString();
        EXPECT_FALSE(printed.contains("R-SL")) << "no value, no row";
        EXPECT_EQ(t.tester.model().versionDates()[2], pictures) << "a template is not the picture set";
        t.Line("rst!0");
        t.Send("\x04");
        ASSERT_EQ(t.tester.restarts(), 1);
        EXPECT_EQ(t.TemplateText(k), kOwnTemplate) << "templates are in flash";
    }
}

TEST(PrintTemplates, RefusedPFileStoresNothingAndReportsNoProgramming)
{
    Tester t;
    const QByteArray report = t.Load(TemplatePFile(kOwnTemplate, 0xC9));
    EXPECT_EQ(report, Answer("Vorlage C9 unbekannt Protokoll .N"));
    EXPECT_FALSE(report.contains("ramming"));
    for (int k = 0; k < sim::kPrintTemplates; ++k)
        EXPECT_EQ(t.TemplateText(k), sim::SampleTemplateText(k)) << k;
    // Cut short by a pause longer than the idle time: the part that came is refused, not stored.
    const QByteArray file = TemplatePFile(kOwnTemplate, 0xE0);
    EXPECT_EQ(t.Line("kal!upd3"), Answer("kal!upd3.Y"));
    const QByteArray first = t.Send(file.left(40));
    EXPECT_EQ(first, Answer("L\x84nge falsch Protokoll .N"));
    EXPECT_EQ(t.TemplateText(3), sim::SampleTemplateText(3));
}

TEST(PrintTemplates, ProgramSendsAPFileByteByByteThroughAUsbAdapterAndReadsItBack)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("EIGEN.P"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray pfile = TemplatePFile(kOwnTemplate, 0xF0);
    file.write(pfile);
    file.close();

    link::ManualClock clock;
    sim::VirtualTester tester(clock);
    tester.setBaud(9600);
    sim::SimTransport transport(tester, clock);
    transport.setAdapterPoll(4ms);
    kalvo::testing::ScriptedPrompter prompter;
    link::Link link(transport, prompter, clock);
    link.OpenPort(link::kSimulatorPortName);
    link.Exchange("idn!99");
    link.Exchange("kal!ein");
    link.Exchange("kal!upd3");
    const link::Duration start = clock.now();
    const QByteArray report = link.SendFileRaw(path);
    // Each byte waits for the adapter's next poll; the report follows the idle line.
    const link::Duration sending = clock.now() - start;
    EXPECT_GE(sending, 4ms * pfile.size() + UpdateLoader::kIdleEnd);
    EXPECT_LT(sending, 4ms * pfile.size() + UpdateLoader::kIdleEnd + UpdateLoader::kEraseTime + 1s);
    EXPECT_GT(report.indexOf("rasing"), 0) << report.toStdString();
    EXPECT_GT(report.indexOf("ramming"), report.indexOf("rasing"));
    EXPECT_TRUE(report.endsWith(kDC1));
    link.Wait(1.0);
    link.Exchange("rst!0");
    link.SendCommand("\x04");
    const QByteArray answer = link.Exchange("prn?4");
    EXPECT_EQ(answer.mid(answer.indexOf("\\v") + 2), kOwnTemplate + "\x11");
    EXPECT_EQ(tester.restarts(), 1);
    EXPECT_EQ(link.refusals(), 0);
}
