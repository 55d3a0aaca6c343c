// Reading the tester's variables and bits by name, the configuration dump and the register switches.
#include "Variables.h"

#include "VariableFile.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/Registers.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"

#include <cctype>

namespace kalvo::config {

QByteArray ValueAfterEquals(const QByteArray &answer)
{
    const qsizetype equals = answer.indexOf('=');
    return answer.mid(equals + 1, 2);
}

QByteArray ByteDigits(const QByteArray &value)
{
    const QByteArray trimmed = value.trimmed().toUpper();
    qsizetype digits = 0;
    while (digits < trimmed.size() && digits < 2 &&
           std::isxdigit(static_cast<unsigned char>(trimmed[digits])))
        ++digits;
    if (digits == 0)
        return {};
    return trimmed.left(digits).rightJustified(2, '0');
}

QByteArray ReadCommandFor(const QString &entry)
{
    const VariableEntry parts = SplitEntry(entry);
    if (!entry.contains(QLatin1Char('#')))
        throw link::FormatError(entry, 0, QStringLiteral("Name#Adresse"));
    const QByteArray address = parts.address.toLatin1();
    if (parts.name.startsWith(QLatin1Char('B')) || parts.name.startsWith(QStringLiteral("PB")))
        return "bit?" + address;
    if (parts.name.startsWith(QLatin1Char('V')) || parts.name.startsWith(QStringLiteral("PV")))
        return "var?" + address;
    throw link::FormatError(entry, 0, QStringLiteral("ein Name, der mit B, PB, V oder PV beginnt"));
}

namespace {

// One register or bit read: only an answer with ".Y" and a hexadecimal value behind "=" holds one.
VariableReading ReadValue(link::Link &link, const QByteArray &command)
{
    VariableReading reading;
    reading.command = command;
    reading.answer = link.Exchange(command);
    reading.value = ByteDigits(ValueAfterEquals(reading.answer));
    const auto number = link::WholeNumber("&H" + reading.value, 0, 255);
    if (!reading.answer.contains(".Y") || !number)
        throw link::FormatError::ForAnswer(
            command, reading.answer, QStringLiteral("einen hexadezimalen Wert hinter \"=\" und \".Y\""));
    reading.number = static_cast<int>(*number);
    return reading;
}

} // namespace

VariableReading ReadVariable(link::Link &link, const QString &entry)
{
    VariableReading reading = ReadValue(link, ReadCommandFor(entry));
    reading.binary = link::HexToBinary(reading.value);
    return reading;
}

QString ConfigurationDump::Text() const
{
    QString text;
    for (const QString &line : lines)
        text += line + QStringLiteral("\r\n");
    return text;
}

ConfigurationDump DumpConfiguration(link::Link &link, const QStringList &blockEntries,
                                    link::Prompter *progress, const LineSink &onLine)
{
    ConfigurationDump dump;
    // One digit table for the whole dump, as the view keeps it between lines.
    link::BinaryGroups groups;
    for (int i = 1; i <= ConfigurationDump::kRegisters; ++i) {
        const QByteArray address = QByteArray::number(207 + i, 16).toUpper();
        const VariableReading reading = ReadValue(link, "var?" + address);
        dump.values << reading.value;
        // The dump shows what the tester sent, " 1" or "a5" as they stand, and their bits by the
        // digit table: a character that is no upper-case digit leaves its group as the line before
        // left it, so a technician sees the answer's form rather than a tidied value.
        const QByteArray raw = ValueAfterEquals(reading.answer);
        dump.lines << QString::fromLatin1(address) + QStringLiteral(": ==") + link::DecodeTesterText(raw) +
                          QLatin1Char(' ') + link::HexToBinary(raw, groups) + blockEntries.value(i - 1);
        if (onLine)
            onLine(dump.lines.constLast());
        if (progress)
            progress->progress(i * 100 / ConfigurationDump::kRegisters);
    }
    return dump;
}

bool StoreConfiguration(link::Link &link, link::Prompter &prompter)
{
    return link::StoreChanges(link, prompter, link::StoreCommand::Configuration);
}

bool ToggleRegisterSwitch(link::Link &link, RegisterSwitch which, bool checked)
{
    const QByteArray address = which == RegisterSwitch::MitBez ? "D3" : "E3";
    link.Exchange("var!" + address + (checked ? " 0" : " 1"));
    return !checked;
}

bool ResetD3(link::Link &link)
{
    const link::RefusalWatch watch(link);
    link.Exchange("var!D3,0");
    return !watch.refused();
}

} // namespace kalvo::config
