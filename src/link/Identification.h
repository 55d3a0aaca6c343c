// Connecting to the tester and finding out what it is, which language it speaks and how old it is.
#pragma once

#include "PackageFiles.h"
#include "VersionDate.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <array>
#include <optional>

namespace kalvo::link {

class Link;

// What ConnectTester reads from the tester after waking it.
struct ConnectionState {
    bool flagsRead = false;        // false in development-terminal mode
    bool quillbankPresent = false; // register E3: the accessory switch is offered
    bool d3Option = false;         // register D3
    // Of "mes!0" and "kal!aus", those not answered ".Y" without ".N": connecting does not look at
    // them, but a command that goes on to change the tester does.
    QList<QByteArray> unconfirmed;
};

// Closes and reopens the port, wakes the tester, stops any measurement, leaves any
// configuration mode and reads the E3 and D3 flags (the last three steps not in
// development-terminal mode).
ConnectionState ConnectTester(Link &link, const QString &portName, bool developmentTerminal = false);

// The five dated parts of the tester's firmware, in the order of the "ver?" fields 1 to 5.
enum class VersionPart { System, Configuration, Pictures, Help, Sequences };
constexpr int kVersionParts = 5;

// Fields of the "idn?" answer: 0 the echo, 1 the device type, 2 the serial number,
// 3 the eight-character short designation (the tester's name), then the firmware " V x.yy".
constexpr int kIdentitySerialField = 2;
constexpr int kIdentityNameField = 3;

struct TesterIdentity {
    int languageCode = 0;
    TesterLanguage language;

    QByteArray versionAnswer;
    QList<QByteArray> versionFields;
    std::array<QString, kVersionParts> versionTexts;
    std::array<std::optional<QDateTime>, kVersionParts> versionDates;

    QByteArray identityAnswer;
    QList<QByteArray> identityFields;
    QByteArray firmwareField; // the identity field that holds " V"
    double firmwareVersion = 0;
    QByteArray serialNumber;
    QByteArray shortDesignation;

    // The identity as the device in front answered it; holds "KYM" when the accessory answers.
    QByteArray accessoryIdentity;
    bool AccessoryInFront() const { return accessoryIdentity.indexOf("KYM") + 1 > 1; }
    // What the Version label shows: with the accessory in front its name and its version
    // ("KYM QRT4027  Firmware V 2.10"), otherwise the tester's firmware field; empty when unknown.
    QByteArray VersionText() const;
    // The tester's short designation and serial number as names and records show them (trimmed).
    QString DesignationText() const { return QString::fromLatin1(shortDesignation).trimmed(); }
    QString SerialText() const { return QString::fromLatin1(serialNumber).trimmed(); }

    bool updateNeeded = false;
    std::array<std::optional<QDateTime>, kVersionParts> packageFileDates;
};

struct IdentifyOptions {
    QString updateDir; // where the package files lie; empty: none
};

// "dis?" (up to five tries), "ver?", "idn?"; throws ProtocolError 31995 "Identstring fehlerhaft"
// when "dis?" never answers with a usable ".Y" or anything was refused (a later "dis?" that is
// answered cures no refusal), FormatError when the language code is no number
// in range. A firmware version that cannot be read is 0, as the tester's tools read it.
// Returns an empty identity when the port is closed.
TesterIdentity IdentifyTester(Link &link, const IdentifyOptions &options);

// The modification dates of the package files of `language` in `dir`, by version part.
std::array<std::optional<QDateTime>, kVersionParts> PackageFileDates(const QString &dir,
                                                                     const TesterLanguage &language);
// True when the tester's pictures, help or sequences are older than the matching package file,
// date and time compared (a version without a time counts from midnight).
bool UpdateNeeded(const std::array<std::optional<QDateTime>, kVersionParts> &testerDates,
                  const std::array<std::optional<QDateTime>, kVersionParts> &fileDates);

// The language code from a "dis?" answer: the value of the two characters before ".Y";
// nullopt when they hold no number from 0 to 99 or there is no ".Y".
std::optional<int> LanguageCodeFromAnswer(const QByteArray &answer);
// The firmware version at the start of `text` (what stands three characters behind " V"), as
// "1.52" gives 1.52; nullopt when there is no number or it has more digits than any version.
std::optional<double> FirmwareVersionNumber(const QByteArray &text);

// The identity field that holds the firmware and its version: the last field in which a version
// number stands three characters behind a " V" ("Kalvomer VDE 0701" holds none). When no field
// does, the last field with a " V" and the version 0 (a number that cannot be read counts 0, as the
// tester's tools read it); nullopt when no field holds a " V".
struct FirmwareField {
    int field = 0;
    double version = 0;
};
std::optional<FirmwareField> FirmwareInIdentity(const QList<QByteArray> &fields);

// The identity with the name the tester has just been given: the short designation and its field.
TesterIdentity WithNewName(TesterIdentity identity, const QByteArray &name);

} // namespace kalvo::link
