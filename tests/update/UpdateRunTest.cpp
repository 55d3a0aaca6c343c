// The update runs against a scripted tester: which files, in which order, behind which commands.
#include "UpdateScript.h"

#include "../link/LinkFixture.h"
#include "link/Errors.h"
#include "link/PackageFiles.h"
#include "support/TestFiles.h"
#include "update/HexFile.h"
#include "update/UpdateRun.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace kalvo::link;
using namespace kalvo::update;

namespace kalvo::testing {
namespace {

// A package folder of one language with all four files.
class Package {
public:
    explicit Package(const QString &code = QStringLiteral("ge")) : files(PackageFilesFor(code))
    {
        context.directory = m_dir.path();
        Put(files.system, JoinLines(HexLines(11)));
        Put(files.pictures, PackageBytes(2500, 1));
        Put(files.sequences, PackageBytes(1200, 2));
        Put(files.help, PackageBytes(1000, 3));
    }
    void Put(const QString &name, const QByteArray &bytes) { ASSERT_TRUE(WriteFile(Path(name), bytes)); }
    void Remove(const QString &name) { QFile::remove(Path(name)); }
    QString Path(const QString &name) const { return m_dir.filePath(name); }
    QByteArray Bytes(const QString &name) const { return ReadFile(Path(name)); }

    PackageFiles files;
    UpdateContext context;

private:
    QTemporaryDir m_dir;
};

void ExpectFirmware(ScriptedTransport &transport, const Package &package)
{
    ExpectSetting(transport, "kal!upd0");
    const HexFile hex = HexFile::Read(package.Path(package.files.system));
    for (qsizetype i = 0; i < hex.lines().size(); ++i) {
        auto &step = transport.Expect(hex.lines()[i] + '\r').Reply("!", 2ms);
        if (i + 1 == hex.lines().size())
            step.Reply("\r\nErasing\r\n\x11", 20ms);
    }
}

void ExpectPackage(ScriptedTransport &transport, const Package &package, const QByteArray &announce,
                   const QString &name)
{
    ExpectSetting(transport, announce);
    ExpectStream(transport, package.Bytes(name)).Reply(kPackageReport, 30ms);
}

void ExpectSession(ScriptedTransport &transport)
{
    ExpectSetting(transport, "idn!99");
    ExpectSetting(transport, "kal!ein");
}

TEST(UpdatePermission, UpocOnPermitsButOffLeavesThePermissionAsItWas)
{
    UpdatePermission permission;
    EXPECT_TRUE(permission.permitted) << "permitted at start";
    permission.permitted = false;
    permission.SetUpoc(true);
    EXPECT_TRUE(permission.permitted);
    permission.SetUpoc(false);
    EXPECT_TRUE(permission.permitted) << "switching upoc off withdrew the permission";
    EXPECT_FALSE(permission.upoc);
    permission.permitted = false;
    permission.SetUpoc(false);
    EXPECT_FALSE(permission.permitted);
    permission.FileChosen();
    EXPECT_TRUE(permission.permitted);
}

TEST(UpdatePermission, SequencesAndHelpAlsoGoDuringAPackageRunPicturesAndFirmwareDoNot)
{
    const struct {
        bool permitted, packageRun;
        bool system, pictures, sequences, help;
    } cases[] = {
        {true, false, true, true, true, true},
        {false, false, false, false, false, false},
        {false, true, false, false, true, true},
        {true, true, true, true, true, true},
    };
    for (const auto &c : cases) {
        UpdatePermission permission;
        permission.permitted = c.permitted;
        permission.packageRun = c.packageRun;
        SCOPED_TRACE(::testing::Message() << "permitted " << c.permitted << ", package run " << c.packageRun);
        EXPECT_EQ(permission.Allows(ContentKind::System), c.system);
        EXPECT_EQ(permission.Allows(ContentKind::Pictures), c.pictures);
        EXPECT_EQ(permission.Allows(ContentKind::Sequences), c.sequences);
        EXPECT_EQ(permission.Allows(ContentKind::Help), c.help);
    }
}

TEST(UpdateKinds, TheFileNameDecidesTheKindAsTheFileListsMaskWould)
{
    const struct {
        const char *name;
        std::optional<ContentKind> kind;
    } cases[] = {
        {"med.hex", ContentKind::System},
        {"MED.HEX", ContentKind::System},
        {"abge.p", ContentKind::Sequences},
        {"Abpl.P", ContentKind::Sequences},
        {"hlfgb.p", ContentKind::Help},
        {"bilder.p", ContentKind::Pictures},
        {"xyz.p", std::nullopt},
        {"abge.p.bak", std::nullopt},
        {"med.hex.old", std::nullopt},
        {"b.pp", std::nullopt},
    };
    for (const auto &c : cases)
        EXPECT_EQ(KindForFileName(QString::fromLatin1(c.name)), c.kind) << c.name;
}

TEST(SingleFileUpdate, EachKindGoesBehindItsLoaderAndOnlyPackagesAreFollowedByARestart)
{
    const struct {
        ContentKind kind;
        const char *announce;
    } cases[] = {
        {ContentKind::System, "kal!upd0"},
        {ContentKind::Pictures, "kal!upd3"},
        {ContentKind::Sequences, "kal!upd1"},
        {ContentKind::Help, "kal!upd2"},
    };
    Package package;
    const QString names[] = {package.files.system, package.files.pictures, package.files.sequences,
                             package.files.help};
    for (const auto &c : cases) {
        const QString name = names[static_cast<int>(c.kind)];
        SCOPED_TRACE(name.toStdString());
        ScriptedLink s;
        ExpectSession(s.transport);
        if (c.kind == ContentKind::System) {
            ExpectFirmware(s.transport, package);
        } else {
            ExpectPackage(s.transport, package, c.announce, name);
            ExpectRestart(s.transport);
        }
        ExpectIdentity(s.transport);
        UpdatePermission permission;
        permission.permitted = false;
        const UpdateOutcome outcome =
            UpdateSingleFile(s.link, s.prompter, permission, c.kind, package.Path(name), package.context);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_TRUE(permission.permitted) << "choosing a file permits it";
        EXPECT_EQ(outcome.sent, QStringList{name});
        EXPECT_TRUE(outcome.Complete());
        ASSERT_TRUE(outcome.identity.has_value());
        EXPECT_FLOAT_EQ(outcome.identity->firmwareVersion, 1.52);
        EXPECT_FALSE(outcome.fixUp.has_value());
    }
}

TEST(SingleFileUpdate, ABrokenFirmwareFileSendsNothingAtAll)
{
    Package package;
    QList<QByteArray> lines = HexLines(11);
    lines[7][5] = lines[7][5] == 'A' ? 'B' : 'A';
    package.Put(package.files.system, JoinLines(lines));
    ScriptedLink s;
    UpdatePermission permission;
    try {
        UpdateSingleFile(s.link, s.prompter, permission, ContentKind::System,
                         package.Path(package.files.system), package.context);
        ADD_FAILURE() << "sent";
    } catch (const FormatError &e) {
        EXPECT_TRUE(e.message().contains(QStringLiteral("med.hex, Zeile 8: erwartet die Prüfsumme")))
            << e.message().toStdString();
    }
    EXPECT_TRUE(s.transport.writes().empty());
}

TEST(SingleFileUpdate, NoLoaderOpensAfterARefusalOrABadAnswerYetTheTesterIsRestarted)
{
    const struct {
        const char *name;
        const char *idn; // the answers to "idn!99", "kal!ein" and "kal!upd1"
        const char *ein;
        const char *announce; // nullptr: the announce must not be sent
        const char *refused;  // what the message names
    } cases[] = {
        {"the loader refuses", "idn!99.Y", "kal!ein.Y", "kal!upd1 .N", "kal!upd1"},
        {"the loader's answer is garbled", "idn!99.Y", "kal!ein.Y", "kal!u#\x7f", "kal!upd1"},
        {"the loader answers without a mark", "idn!99.Y", "kal!ein.Y", "kal!upd1", "kal!upd1"},
        {"the session is refused", "idn!99.Y", "kal!ein Protokoll .N", nullptr, "kal!ein"},
        {"the identification is garbled", "@@", "kal!ein.Y", nullptr, "idn!99"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Package package;
        ScriptedLink s;
        s.transport.Expect("idn!99\r").Reply(QByteArray(c.idn) + "\r\n\x11");
        s.transport.Expect("kal!ein\r").Reply(QByteArray(c.ein) + "\r\n\x11");
        if (c.announce)
            s.transport.Expect("kal!upd1\r").Reply(QByteArray(c.announce) + "\r\n\x11");
        // Not left in configuration mode.
        ExpectRestart(s.transport);
        ExpectIdentity(s.transport);
        UpdatePermission permission;
        try {
            UpdateSingleFile(s.link, s.prompter, permission, ContentKind::Sequences,
                             package.Path(package.files.sequences), package.context);
            ADD_FAILURE() << "the file went";
        } catch (const ProtocolError &e) {
            EXPECT_TRUE(e.message().contains(QLatin1String(c.refused))) << e.message().toStdString();
            EXPECT_TRUE(e.message().contains(QStringLiteral("abge.p wurde nicht gesendet")))
                << e.message().toStdString();
        }
        EXPECT_TRUE(s.transport.allExpectationsMet()); // and nothing beyond them: no stream
        EXPECT_EQ(s.link.refusedCommands().value(0), QByteArray(c.refused));
    }
}

TEST(SingleFileUpdate, AFailedTransferStillRestartsTheTesterThenAsksForTheUpdateAgain)
{
    const struct {
        const char *name;
        QByteArray report; // after the stream
        int number;
    } cases[] = {
        {"no report", {}, 3},
        {"no erase report", "\r\nChecksum error\r\n\x11", kEraseReportMissing},
        {"the programming report first", "ramming\r\n\x11", kProgrammingReportMisplaced},
        {"erased, never programmed", "\r\nErasing\r\n", 3},
        {"the package refused", "Kopf fehlerhaft Protokoll .N\r\n\x11", kProtocolErrorNumber},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Package package;
        ScriptedLink s;
        ExpectSession(s.transport);
        ExpectSetting(s.transport, "kal!upd2");
        auto &last = ExpectStream(s.transport, package.Bytes(package.files.help));
        if (!c.report.isEmpty())
            last.Reply(c.report, 30ms);
        ExpectRestart(s.transport);
        ExpectIdentity(s.transport);
        UpdatePermission permission;
        try {
            UpdateSingleFile(s.link, s.prompter, permission, ContentKind::Help,
                             package.Path(package.files.help), package.context);
            ADD_FAILURE() << "no failure told";
        } catch (const KalvoError &e) {
            EXPECT_EQ(e.number(), c.number) << e.message().toStdString();
            EXPECT_TRUE(e.message().contains(QStringLiteral("Update wiederholen")))
                << e.message().toStdString();
        }
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_TRUE(s.link.IsOpen());
    }
}

TEST(SingleFileUpdate, AFailureAfterAFailedTransferTellsTheFirst)
{
    // The tester stopped answering while it flashed: the restart goes unanswered too, and the
    // message is about the transfer.
    Package package;
    ScriptedLink s;
    ExpectSession(s.transport);
    ExpectSetting(s.transport, "kal!upd1");
    ExpectStream(s.transport, package.Bytes(package.files.sequences)).Reply("\r\nChecksum error\r\n", 30ms);
    s.transport.Expect("rst!0\r");
    UpdatePermission permission;
    try {
        UpdateSingleFile(s.link, s.prompter, permission, ContentKind::Sequences,
                         package.Path(package.files.sequences), package.context);
        ADD_FAILURE() << "no failure told";
    } catch (const KalvoError &e) {
        EXPECT_EQ(e.number(), kEraseReportMissing) << e.message().toStdString();
    }
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_FALSE(s.link.IsOpen());
}

TEST(SingleFileUpdate, ALoaderAnsweringInUpperCaseIsListening)
{
    Package package;
    ScriptedLink s;
    ExpectSession(s.transport);
    s.transport.Expect("kal!upd1\r").Reply("KAL!UPD1 .Y\r\n\x11");
    ExpectStream(s.transport, package.Bytes(package.files.sequences)).Reply(kPackageReport, 30ms);
    ExpectRestart(s.transport);
    ExpectIdentity(s.transport);
    UpdatePermission permission;
    const UpdateOutcome outcome = UpdateSingleFile(s.link, s.prompter, permission, ContentKind::Sequences,
                                                   package.Path(package.files.sequences), package.context);
    EXPECT_EQ(outcome.sent, QStringList{package.files.sequences});
    EXPECT_TRUE(s.transport.allExpectationsMet());
}

TEST(UpdateByName, OnlyTheExactNamesOfTheLanguageAreSentAndARestartAlwaysFollows)
{
    Package package;
    const PackageFiles german = package.files;
    const struct {
        const char *name;
        const char *announce; // nullptr: not sent
    } cases[] = {
        {"abge.p", "kal!upd1"},  {"hlfge.p", "kal!upd2"}, {"bilder.p", "kal!upd3"},
        {"med.hex", "kal!upd0"}, {"ABGE.p", nullptr},     {"Bilder.p", nullptr},
        {"med.HEX", nullptr},    {"hlfgb.p", nullptr},    {"abge.p ", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString name = QString::fromLatin1(c.name);
        if (!QFile::exists(package.Path(name)))
            package.Put(name, PackageBytes(500));
        ScriptedLink s;
        ExpectSession(s.transport);
        if (c.announce && name.endsWith(QLatin1String(".hex")))
            ExpectFirmware(s.transport, package);
        else if (c.announce)
            ExpectPackage(s.transport, package, c.announce, name);
        ExpectRestart(s.transport);
        ExpectIdentity(s.transport);
        const UpdateOutcome outcome =
            UpdateByName(s.link, s.prompter, UpdatePermission{}, name, german, package.context);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(outcome.sent.size(), c.announce ? 1 : 0);
    }
}

TEST(PackageUpdate, AllFourFilesInOrderThenRestartIdentityAndFixUp)
{
    Package package(QStringLiteral("pl"));
    ScriptedLink s;
    ExpectSession(s.transport);
    ExpectFirmware(s.transport, package);
    ExpectSession(s.transport);
    ExpectPackage(s.transport, package, "kal!upd3", "bilder.p");
    ExpectPackage(s.transport, package, "kal!upd1", "abpl.p");
    ExpectPackage(s.transport, package, "kal!upd2", "hlfpl.p");
    ExpectRestart(s.transport);
    ExpectIdentity(s.transport, "1.41");
    ExpectSession(s.transport);
    s.transport.Expect("kal?29\r").Reply("kal?29;29:0,2000.0.Y\r\n\x11");
    ExpectSetting(s.transport, "wer!29,0");
    ExpectSetting(s.transport, "wer!29,3380");
    s.transport.Expect("kal?50\r").Reply("kal?50;50:0,1204.Y\r\n\x11");
    ExpectSetting(s.transport, "kal!pgm");
    ExpectSetting(s.transport, "kal!aus");
    UpdatePermission permission;
    const UpdateOutcome outcome =
        UpdatePackage(s.link, s.prompter, permission, QStringLiteral("pl"), package.context);
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_EQ(outcome.sent, (QStringList{"med.hex", "bilder.p", "abpl.p", "hlfpl.p"}));
    EXPECT_TRUE(outcome.Complete());
    ASSERT_TRUE(outcome.fixUp.has_value());
    EXPECT_TRUE(outcome.fixUp->changed29);
    EXPECT_FALSE(outcome.fixUp->changed50);
    EXPECT_TRUE(outcome.fixUp->stored);
    EXPECT_FALSE(permission.packageRun);
    EXPECT_EQ(s.link.refusals(), 0);
}

TEST(PackageUpdate, WithoutPermissionFirmwareAndPicturesAreRefusedSequencesAndHelpStillGo)
{
    for (const bool upoc : {false, true}) {
        SCOPED_TRACE(upoc ? "upoc checked" : "upoc not checked");
        Package package;
        ScriptedLink s;
        ExpectSession(s.transport);
        if (upoc) {
            ExpectFirmware(s.transport, package);
        } else {
            ExpectRestart(s.transport); // the firmware's refusal restarts the tester
        }
        ExpectSession(s.transport);
        if (upoc)
            ExpectPackage(s.transport, package, "kal!upd3", "bilder.p");
        ExpectPackage(s.transport, package, "kal!upd1", "abge.p");
        ExpectPackage(s.transport, package, "kal!upd2", "hlfge.p");
        ExpectRestart(s.transport);
        ExpectIdentity(s.transport, "1.4");
        UpdatePermission permission;
        permission.permitted = false;
        permission.upoc = upoc;
        const UpdateOutcome outcome =
            UpdatePackage(s.link, s.prompter, permission, QStringLiteral("ge"), package.context);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_FALSE(outcome.fixUp.has_value()) << "firmware 1.4 gets no fix-up";
        EXPECT_EQ(permission.permitted, upoc);
        if (upoc) {
            EXPECT_TRUE(s.prompter.messages.empty());
        } else {
            EXPECT_EQ(outcome.notPermitted, (QList<ContentKind>{ContentKind::System, ContentKind::Pictures}));
            ASSERT_EQ(s.prompter.messages.size(), 2u);
            EXPECT_EQ(s.prompter.messages[0].text, package.context.texts.text(TxtRefuseSystem));
            EXPECT_EQ(s.prompter.messages[1].text, package.context.texts.text(TxtRefusePictures));
        }
    }
}

TEST(PackageUpdate, AMissingFileIsReportedAndTheRunGoesOn)
{
    Package package;
    package.Remove(QStringLiteral("bilder.p"));
    package.Put(QStringLiteral("hlfge.p"), PackageBytes(100));
    ScriptedLink s;
    ExpectSession(s.transport);
    ExpectFirmware(s.transport, package);
    ExpectSession(s.transport);
    ExpectSetting(s.transport, "kal!upd3"); // announced before the file is found missing
    ExpectPackage(s.transport, package, "kal!upd1", "abge.p");
    ExpectSetting(s.transport, "kal!upd2");
    ExpectRestart(s.transport);
    ExpectIdentity(s.transport, "1.2");
    UpdatePermission permission;
    const UpdateOutcome outcome =
        UpdatePackage(s.link, s.prompter, permission, QStringLiteral("ge"), package.context);
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_EQ(outcome.sent, (QStringList{"med.hex", "abge.p"}));
    EXPECT_EQ(outcome.missing, (QStringList{"bilder.p", "hlfge.p"}));
    ASSERT_EQ(s.prompter.messages.size(), 2u);
    EXPECT_TRUE(s.prompter.messages[0].text.endsWith(QStringLiteral("bilder.p nicht gefunden")));
}

TEST(PackageUpdate, AfterAFailedTransferNoLoaderOpensTheTesterIsRestartedAndNothingIsFixedUp)
{
    Package package;
    ScriptedLink s;
    ExpectSession(s.transport);
    ExpectFirmware(s.transport, package);
    ExpectSession(s.transport);
    ExpectSetting(s.transport, "kal!upd3");
    ExpectStream(s.transport, package.Bytes("bilder.p")).Reply("\r\nFlash defect\r\n\x11", 30ms);
    // Neither sequences nor help, but the restart and the identity; no fix-up on firmware 1.52.
    ExpectRestart(s.transport);
    ExpectIdentity(s.transport, "1.52");
    UpdatePermission permission;
    try {
        UpdatePackage(s.link, s.prompter, permission, QStringLiteral("ge"), package.context);
        ADD_FAILURE() << "went on";
    } catch (const TransferError &e) {
        EXPECT_EQ(e.number(), kEraseReportMissing);
    }
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_FALSE(permission.packageRun);
}

TEST(PackageUpdate, BadFilesAreRefusedBeforeTheFirstCommand)
{
    const struct {
        const char *name;
        std::function<void(Package &)> spoil;
    } cases[] = {
        {"firmware without its end record",
         [](Package &p) { p.Put("med.hex", JoinLines(HexLines(11).mid(0, 11))); }},
        {"a huge package",
         [](Package &p) { ASSERT_TRUE(MakeLargeFile(p.Path("hlfge.p"), kMaxPackageFileBytes + 1)); }},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Package package;
        c.spoil(package);
        ScriptedLink s;
        UpdatePermission permission;
        EXPECT_THROW(UpdatePackage(s.link, s.prompter, permission, QStringLiteral("ge"), package.context),
                     FormatError);
        EXPECT_TRUE(s.transport.writes().empty());
    }
}

TEST(PackageUpdate, NothingIsSentWhileThePortIsClosed)
{
    Package package;
    ScriptedLink s;
    s.transport.close();
    UpdatePermission permission;
    const UpdateOutcome outcome =
        UpdatePackage(s.link, s.prompter, permission, QStringLiteral("ge"), package.context);
    EXPECT_TRUE(outcome.sent.isEmpty());
    EXPECT_EQ(s.prompter.messages.size(), 1u);
}

} // namespace
} // namespace kalvo::testing
