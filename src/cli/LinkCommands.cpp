// kalvo-cli identify and send: connecting, identifying and talking to the tester directly.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliWords.h"

#include "link/Identification.h"
#include "link/TextRules.h"
#include "shell/ServiceTerminal.h"

#include <QCoreApplication>
#include <QDir>

namespace kalvo::cli {

namespace {

// Date and time in one form for every user, so that scripts can read it.
QString DateText(const std::optional<QDateTime> &date)
{
    return date ? date->toString(Qt::ISODate) : QStringLiteral("-");
}

int Identify(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {QStringLiteral("--update-dir")});
    if (!w.positional.isEmpty())
        throw Usage(UsageText::UnknownArgument, {w.positional.first()});
    const QString updateDir =
        w.options.value(QStringLiteral("--update-dir"), QCoreApplication::applicationDirPath());
    link::Link &link = context.link();
    const link::ConnectionState state = link::ConnectTester(link, context.portName());
    const link::TesterIdentity id = link::IdentifyTester(link, {updateDir});
    context.TesterIdentified(id);

    static const char *const kParts[link::kVersionParts] = {"system", "configuration", "pictures", "help",
                                                            "sequences"};
    QTextStream &out = context.out();
    out << "language: " << id.languageCode << ' ' << id.language.menuEntry << '\n';
    for (int part = 0; part < link::kVersionParts; ++part) {
        const auto p = static_cast<size_t>(part);
        out << kParts[part] << ": " << id.versionTexts[p] << " (" << DateText(id.versionDates[p]) << ")\n";
    }
    out << "identity: " << link::DecodeTesterText(link::StripControlChars(id.identityAnswer)) << '\n';
    out << "serial: " << QString::fromLatin1(id.serialNumber) << '\n';
    out << "name: " << QString::fromLatin1(id.shortDesignation) << '\n';
    out << "firmware: " << QString::number(id.firmwareVersion, 'g', 6) << '\n';
    out << "version: " << link::DecodeTesterText(id.VersionText()) << '\n';
    out << "accessory: " << (id.AccessoryInFront() ? QStringLiteral("in front") : QStringLiteral("none"))
        << '\n';
    out << "quillbank: " << (state.quillbankPresent ? "yes" : "no") << '\n';
    out << "d3: " << (state.d3Option ? "on" : "off") << '\n';
    bool anyPackageFile = false;
    for (const auto &date : id.packageFileDates)
        anyPackageFile = anyPackageFile || date.has_value();
    out << "update: "
        << (id.updateNeeded ? QStringLiteral("due")
            : anyPackageFile
                ? QStringLiteral("not due")
                : QStringLiteral("unknown (no package files in %1)").arg(QDir::toNativeSeparators(updateDir)))
        << '\n';
    return kExitDone;
}

int Send(CliContext &context, const QStringList &words)
{
    if (words.isEmpty())
        throw Usage(UsageText::Expected, {QStringLiteral("CMD...")});
    link::Link &link = context.link();
    context.OpenPort();
    for (const QString &command : words) {
        const QByteArray answer = shell::SendTerminalCommand(link, command);
        context.out() << link::EscapeBytes(answer) << Qt::endl;
    }
    return context.prompter().failureShown() ? kExitFailed : kExitDone;
}

} // namespace

QList<CliCommand> LinkCommands()
{
    return {
        {QStringLiteral("identify"), QStringLiteral("[--update-dir DIR]"),
         QStringLiteral("connect, identify the tester and tell whether an update is due"), Identify},
        {QStringLiteral("send"), QStringLiteral("CMD..."),
         QStringLiteral("send each CMD as one command line and print each answer as received"), Send},
    };
}

} // namespace kalvo::cli
