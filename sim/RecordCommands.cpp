// The tester's answers about its record store, its print templates and the KYM accessory's records.
#include "RecordCommands.h"

#include "PrintRenderer.h"

namespace kalvo::sim {

namespace {

constexpr char kDC1 = '\x11';
constexpr char kENQ = '\x05';
constexpr char kFormFeed = '\x0C';
// Each record chunk ends in "." CR LF DC1: the "." is the tester's own, the rest is added by the answer.
const QByteArray kChunkEnd = ".";
// The y and z chunks carry eight characters of the tester's buffer before the data.
const QByteArray kFiller = "XXXXXXXX";

int PartIndex(char letter)
{
    return letter == 'x' ? 0 : letter == 'y' ? 1 : letter == 'z' ? 2 : -1;
}

} // namespace

std::optional<int> RecordNumber(const QByteArray &text)
{
    const QByteArray digits = text.trimmed();
    if (digits.isEmpty() || digits.size() > 4)
        return std::nullopt;
    for (char c : digits) {
        if (c < '0' || c > '9')
            return std::nullopt;
    }
    return digits.toInt();
}

std::optional<QByteArray> RecordCommands::Stream(const QByteArray &lower) const
{
    if (lower == "prx?nx")
        return m_store.Listing() + kDC1;
    if (lower == "wer?" && m_kymInFront)
        return m_store.AccessoryStream() + kDC1;
    return std::nullopt;
}

bool RecordCommands::Handles(const QByteArray &lower) const
{
    return lower.startsWith("prx?") || lower.startsWith("prn!") || lower.startsWith("prn?") ||
           (lower == "esr?" && m_kymInFront);
}

std::optional<QByteArray> RecordCommands::Payload(const QByteArray &lower) const
{
    if (lower == "prn?")
        return " " + QByteArray::number(m_printTemplate) + ".Y";
    if (lower.startsWith("prn?"))
        return TemplateText(lower.mid(4));
    if (lower == "esr?")
        return ";" + QByteArray::number(m_store.accessoryRecords().size());
    if (lower.startsWith("prn!"))
        return Print(lower.mid(4));
    if (lower.startsWith("prx?"))
        return RecordQuery(lower.mid(4));
    return std::nullopt;
}

std::optional<QByteArray> RecordCommands::RecordQuery(const QByteArray &argument) const
{
    if (argument == "n")
        return "= " + QByteArray::number(m_store.count());
    if (argument.isEmpty())
        return m_store.current() ? ".Y" : ".N";
    const int part = PartIndex(argument.back());
    if (part < 0)
        return std::nullopt;
    if (argument.size() == 1) {
        // The current record: no filler in any chunk.
        if (!m_store.current())
            return std::nullopt;
        return "=" + RecordStore::Part(*m_store.current(), part) + kChunkEnd;
    }
    const auto number = RecordNumber(argument.chopped(1));
    const auto text = number ? m_store.EntryPart(*number, part) : std::nullopt;
    if (!text)
        return std::nullopt;
    return ":" + (part == 0 ? QByteArray() : kFiller) + *text + kChunkEnd;
}

std::optional<QByteArray> RecordCommands::Print(const QByteArray &argument) const
{
    // "prn!t" renders the current record, "prn!t,i" record i of the store.
    const qsizetype comma = argument.indexOf(',');
    const auto templateNumber = RecordNumber(comma < 0 ? argument : argument.left(comma));
    if (!templateNumber || *templateNumber >= kPrintTemplates)
        return std::nullopt;
    std::optional<QByteArray> record;
    if (comma < 0) {
        record = m_store.current();
    } else if (const auto number = RecordNumber(argument.mid(comma + 1))) {
        record = m_store.Record(*number);
    }
    if (!record)
        return std::nullopt;
    return QByteArray("\r\n") + kENQ +
           PrintRenderer::Render(m_templates[static_cast<size_t>(*templateNumber)], *record) + kFormFeed;
}

std::optional<QByteArray> RecordCommands::TemplateText(const QByteArray &argument) const
{
    // A blank before the number is taken, as in every command with a number.
    const auto number = RecordNumber(argument);
    if (!number || *number >= kPrintTemplates)
        return std::nullopt;
    // Everything behind "\\v" is the template, as a reader keeps it: the answer's own line end
    // closes its last line, and no ".Y" follows.
    QByteArray text = m_templates[static_cast<size_t>(*number)];
    if (text.endsWith("\r\n"))
        text.chop(2);
    return " Vorlage " + QByteArray::number(*number) + " \\v" + text;
}

} // namespace kalvo::sim
