// Connecting to the tester and finding out what it is, which language it speaks and how old it is.
#include "Identification.h"

#include "Errors.h"
#include "Link.h"
#include "TextRules.h"

#include <QDir>
#include <QFileInfo>
#include <cctype>
#include <cmath>

namespace kalvo::link {

namespace {
const QString kIdentityError = QStringLiteral("Identstring fehlerhaft");
constexpr int kDisplayTries = 5;
// Versions run to a few digits each side of the point; anything longer is not a version.
constexpr qint64 kMaxMajorVersion = 9999;
constexpr qsizetype kMaxMinorDigits = 6;
} // namespace

namespace {

QByteArray ReadRegisterAnswer(Link &link, const QByteArray &command)
{
    const QByteArray answer = link.Exchange(command);
    if (!answer.contains(".Y"))
        throw FormatError::ForAnswer(command, answer, QStringLiteral("einen Registerwert vor \".Y\""));
    return answer;
}

// The version and identity answers are fields between ";"; one without any holds none of them.
QList<QByteArray> AnswerFields(Link &link, const QByteArray &command, QByteArray &answer)
{
    answer = link.Exchange(command);
    if (!answer.contains(';'))
        throw FormatError::ForAnswer(command, answer, QStringLiteral("durch \";\" getrennte Felder"));
    return SplitFields(answer);
}

} // namespace

ConnectionState ConnectTester(Link &link, const QString &portName, bool developmentTerminal)
{
    link.OpenPort(portName);
    link.WakeUp();
    ConnectionState state;
    if (developmentTerminal)
        return state;
    for (const QByteArray &command : {QByteArray("mes!0"), QByteArray("kal!aus")}) {
        const QByteArray answer = link.Exchange(command);
        if (!answer.contains(".Y") || answer.contains(".N"))
            state.unconfirmed << command;
    }
    // A plain search for "1" anywhere in the answer, as the tester's tools have always done; but
    // only in an answer that holds a register value at all.
    state.quillbankPresent = ReadRegisterAnswer(link, "var?E3").contains('1');
    state.d3Option = ReadRegisterAnswer(link, "var?D3").contains('1');
    state.flagsRead = true;
    return state;
}

std::optional<int> LanguageCodeFromAnswer(const QByteArray &answer)
{
    const qsizetype yes = PositionOf(answer, ".Y");
    if (yes < 2)
        return std::nullopt;
    const qsizetype from = std::max<qsizetype>(0, yes - 3);
    const auto code = WholeNumber(answer.mid(from, yes - 1 - from), 0, 99);
    if (!code)
        return std::nullopt;
    return static_cast<int>(*code);
}

std::optional<double> FirmwareVersionNumber(const QByteArray &text)
{
    if (text.trimmed().startsWith('&')) // a version is decimal, never "&H"
        return std::nullopt;
    const auto major = WholeNumber(text, 0, kMaxMajorVersion);
    if (!major)
        return std::nullopt;
    qsizetype i = 0;
    while (i < text.size() && !std::isdigit(static_cast<unsigned char>(text[i])))
        ++i;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])))
        ++i;
    if (i >= text.size() || text[i] != '.')
        return static_cast<double>(*major);
    qsizetype end = i + 1;
    while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])))
        ++end;
    const QByteArray minorDigits = text.mid(i + 1, end - i - 1);
    if (minorDigits.isEmpty())
        return static_cast<double>(*major);
    if (minorDigits.size() > kMaxMinorDigits)
        return std::nullopt;
    const auto minor = WholeNumber(minorDigits, 0, 999999);
    return static_cast<double>(*major) +
           static_cast<double>(*minor) / std::pow(10.0, static_cast<double>(minorDigits.size()));
}

std::optional<FirmwareField> FirmwareInIdentity(const QList<QByteArray> &fields)
{
    // The firmware stands last, behind fields that may hold a " V" of their own (a device type
    // "Kalvomer VDE 0701", a name "LAB V 2"): the search starts at the end.
    std::optional<FirmwareField> unreadable;
    for (qsizetype field = fields.size() - 1; field >= 0; --field) {
        const QByteArray &text = fields[field];
        for (qsizetype v = text.indexOf(" V"); v >= 0; v = text.indexOf(" V", v + 1)) {
            if (const auto version = FirmwareVersionNumber(text.mid(v + 3)))
                return FirmwareField{static_cast<int>(field), *version};
            if (!unreadable)
                unreadable = FirmwareField{static_cast<int>(field), 0};
        }
    }
    return unreadable;
}

QByteArray TesterIdentity::VersionText() const
{
    const QByteArray firmware = firmwareField.trimmed();
    if (!AccessoryInFront())
        return firmware;
    QByteArray accessory;
    for (const QByteArray &field : identityFields)
        if (field.contains("KYM")) {
            accessory = field.trimmed();
            break;
        }
    if (firmware.isEmpty() || accessory == firmware)
        return accessory;
    return accessory + "  " + firmware;
}

TesterIdentity WithNewName(TesterIdentity identity, const QByteArray &name)
{
    identity.shortDesignation = name.trimmed().left(8);
    if (kIdentityNameField < identity.identityFields.size())
        identity.identityFields[kIdentityNameField] = name;
    return identity;
}

std::array<std::optional<QDateTime>, kVersionParts> PackageFileDates(const QString &dir,
                                                                     const TesterLanguage &language)
{
    std::array<std::optional<QDateTime>, kVersionParts> dates;
    if (dir.isEmpty())
        return dates;
    const PackageFiles files = PackageFilesFor(language.packageCode);
    const auto dateOf = [&](const QString &name) -> std::optional<QDateTime> {
        const QFileInfo info(QDir(dir).filePath(name));
        if (!info.isFile())
            return std::nullopt;
        return info.lastModified();
    };
    dates[static_cast<size_t>(VersionPart::System)] = dateOf(files.system);
    dates[static_cast<size_t>(VersionPart::Pictures)] = dateOf(files.pictures);
    dates[static_cast<size_t>(VersionPart::Help)] = dateOf(files.help);
    dates[static_cast<size_t>(VersionPart::Sequences)] = dateOf(files.sequences);
    return dates;
}

bool UpdateNeeded(const std::array<std::optional<QDateTime>, kVersionParts> &testerDates,
                  const std::array<std::optional<QDateTime>, kVersionParts> &fileDates)
{
    for (VersionPart part : {VersionPart::Sequences, VersionPart::Help, VersionPart::Pictures}) {
        const auto &tester = testerDates[static_cast<size_t>(part)];
        const auto &file = fileDates[static_cast<size_t>(part)];
        if (tester && file && *tester < *file)
            return true;
    }
    return false;
}

TesterIdentity IdentifyTester(Link &link, const IdentifyOptions &options)
{
    ProtocolErrorScope scope(link, kProtocolErrorNumber, kIdentityError);
    TesterIdentity id;
    if (!link.IsOpen())
        return id;

    // The tries are for answers without a usable ".Y"; a refusal stays one even when a later try
    // is answered, and nothing that rests on the identification may go on after it.
    const RefusalWatch watch(link);
    const auto failed = [&link] {
        return ProtocolError(link.protocolErrorNumber(), link.protocolErrorText());
    };
    QByteArray display;
    qsizetype yes = 0;
    for (int attempt = 0; attempt < kDisplayTries; ++attempt) {
        display = link.Exchange("dis?");
        yes = PositionOf(display, ".Y");
        if (yes > 2)
            break;
    }
    if (yes < 2 || watch.refused())
        throw failed();
    const auto code = LanguageCodeFromAnswer(display);
    if (!code)
        throw FormatError::ForAnswer("dis?", display,
                                     QStringLiteral("eine Sprachnummer 0 bis 99 vor \".Y\""));
    id.languageCode = *code;
    id.language = LanguageForCode(id.languageCode);

    id.versionFields = AnswerFields(link, "ver?", id.versionAnswer);
    for (int part = 0; part < kVersionParts; ++part) {
        const int field = part + 1;
        if (field < id.versionFields.size()) {
            id.versionTexts[static_cast<size_t>(part)] =
                QString::fromLatin1(id.versionFields[field]).trimmed();
            id.versionDates[static_cast<size_t>(part)] =
                ParseVersionDate(id.versionTexts[static_cast<size_t>(part)]);
        }
    }
    id.packageFileDates = PackageFileDates(options.updateDir, id.language);
    id.updateNeeded = UpdateNeeded(id.versionDates, id.packageFileDates);

    id.identityFields = AnswerFields(link, "idn?", id.identityAnswer);
    id.accessoryIdentity = StripControlChars(id.identityAnswer);
    if (const auto firmware = FirmwareInIdentity(id.identityFields)) {
        id.firmwareField = id.identityFields[firmware->field];
        id.firmwareVersion = firmware->version;
    }
    if (watch.refused())
        throw failed();
    if (kIdentitySerialField < id.identityFields.size())
        id.serialNumber = id.identityFields[kIdentitySerialField];
    if (kIdentityNameField < id.identityFields.size())
        id.shortDesignation = id.identityFields[kIdentityNameField].trimmed().left(8);
    return id;
}

} // namespace kalvo::link
