// One record of the tester's store split into its numbered fields, and what its code string says.
#include "RecordText.h"

namespace kalvo::sim {

RecordText::RecordText(const QByteArray &text)
{
    QByteArray body = text.mid(1);
    if (body.endsWith("\r\n"))
        body.chop(2);
    if (body.endsWith(kEndMark))
        body.chop(static_cast<qsizetype>(sizeof(kEndMark) - 1));
    m_fields = body.split(';');
    // Every field is closed by ";": the piece behind the last one is no field.
    if (!m_fields.isEmpty() && m_fields.last().isEmpty())
        m_fields.removeLast();
}

QByteArray RecordText::Field(int number) const
{
    return m_fields.value(number - 1);
}

QByteArray RecordText::Compose(char lead, const QList<QByteArray> &fields)
{
    QByteArray text(1, lead);
    for (const QByteArray &field : fields)
        text += field + ';';
    return text + kEndMark;
}

QByteArray RecordText::CodeAt(int position, int count) const
{
    return Field(2).mid(position - 1, count);
}

int RecordText::ResultCode() const
{
    bool ok = false;
    const int code = CodeAt(7, 1).toInt(&ok, 16);
    return ok ? code : 0;
}

int RecordText::RegulationCode() const
{
    bool ok = false;
    const int code = CodeAt(13, 1).toInt(&ok, 16);
    return ok ? code : 0;
}

int RecordText::ProtectionClass() const
{
    return CodeAt(29, 2).toInt() - 4;
}

QByteArray RecordText::AppliedPart() const
{
    const QByteArray code = CodeAt(31, 2);
    if (code == "01")
        return "B";
    if (code == "02")
        return "BF";
    if (code == "03")
        return "CF";
    return {};
}

QByteArray RecordText::RegulationName(int code)
{
    switch (code) {
    case 1: return "DIN VDE 0701 Teil 1";
    case 2: return "DIN VDE 0701 Teil 200";
    case 3: return "DIN VDE 0701 Teil 240";
    case 4: return "DIN VDE 0701 Teil 260";
    case 5: return "DIN VDE 0702";
    case 6: return "DIN VDE 0751";
    case 7: return "EN 60061";
    case 8: return "EN 60335";
    case 9: return "EN 60950";
    default: return "Kundenspezifisch";
    }
}

QByteArray RecordText::Verdict() const
{
    return Passed() ? "bestanden" : "nicht bestanden";
}

} // namespace kalvo::sim
