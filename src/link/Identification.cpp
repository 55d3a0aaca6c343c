// Connecting to the tester and finding out what it is, which language it speaks and how old it is.
#include "Identification.h"

#include "Errors.h"
#include "Link.h"
#include "TextRules.h"

#include <QDir>
#include <QFileInfo>

namespace kalvo::link {

namespace {
const QString kIdentityError = QStringLiteral("Identstring fehlerhaft");
constexpr int kDisplayTries = 5;
} // namespace

ConnectionState ConnectTester(Link &link, const QString &portName, bool developmentTerminal)
{
    link.OpenPort(portName);
    link.WakeUp();
    ConnectionState state;
    if (developmentTerminal)
        return state;
    link.Exchange("mes!0");
    link.Exchange("kal!aus");
    // A plain search for "1" anywhere in the answer, as the tester's tools have always done.
    state.quillbankPresent = link.Exchange("var?E3").contains('1');
    state.d3Option = link.Exchange("var?D3").contains('1');
    state.flagsRead = true;
    return state;
}

int LanguageCodeFromAnswer(const QByteArray &answer)
{
    const qsizetype yes = PositionOf(answer, ".Y");
    if (yes < 2)
        return -1;
    const qsizetype from = std::max<qsizetype>(0, yes - 3);
    return static_cast<int>(NumericValue(answer.mid(from, yes - 1 - from)));
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
        if (tester && file && tester->date() < file->date())
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

    QByteArray display;
    qsizetype yes = 0;
    for (int attempt = 0; attempt < kDisplayTries; ++attempt) {
        display = link.Exchange("dis?");
        yes = PositionOf(display, ".Y");
        if (yes > 2)
            break;
    }
    if (yes < 2)
        throw ProtocolError(link.protocolErrorNumber(), link.protocolErrorText());
    id.languageCode = LanguageCodeFromAnswer(display);
    id.language = LanguageForCode(id.languageCode);

    id.versionAnswer = link.Exchange("ver?");
    id.versionFields = SplitFields(id.versionAnswer);
    for (int part = 0; part < kVersionParts; ++part) {
        const int field = part + 1;
        if (field < id.versionFields.size()) {
            id.versionTexts[static_cast<size_t>(part)] =
                QString::fromLatin1(id.versionFields[field]).trimmed();
            id.versionDates[static_cast<size_t>(part)] =
                ParseVersionDate(id.versionTexts[static_cast<size_t>(part)], options.dateOrder);
        }
    }
    id.packageFileDates = PackageFileDates(options.updateDir, id.language);
    id.updateNeeded = UpdateNeeded(id.versionDates, id.packageFileDates);

    id.identityAnswer = link.Exchange("idn?");
    id.identityFields = SplitFields(id.identityAnswer);
    id.accessoryIdentity = StripControlChars(id.identityAnswer);
    for (const QByteArray &field : std::as_const(id.identityFields)) {
        const qsizetype v = field.indexOf(" V");
        if (v >= 0) {
            id.firmwareField = field;
            id.firmwareVersion = NumericValue(field.mid(v + 3));
            break;
        }
    }
    if (kIdentitySerialField < id.identityFields.size())
        id.serialNumber = id.identityFields[kIdentitySerialField];
    if (kIdentityNameField < id.identityFields.size())
        id.shortDesignation = id.identityFields[kIdentityNameField].trimmed().left(8);
    return id;
}

} // namespace kalvo::link
