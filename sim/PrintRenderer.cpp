// A record printed with a print template: the template's field markers filled with the record's values.
#include "PrintRenderer.h"

#include "RecordText.h"

#include <QList>
#include <optional>

namespace kalvo::sim {

namespace {

constexpr char kMarker = '#';
constexpr int kMarkerWidth = 3;

// The value a marker code stands for; nullopt when the code is no marker ("#1a" stays as it is).
std::optional<QByteArray> MarkerValue(const QByteArray &code, const RecordText &record)
{
    if (code == "VS")
        return record.RegulationName();
    if (code == "SK")
        return QByteArray::number(record.ProtectionClass());
    if (code == "AT") {
        const QByteArray part = record.AppliedPart();
        return part.isEmpty() ? QByteArray("-") : "Typ " + part;
    }
    if (code == "ER")
        return record.Verdict();
    if (code.size() != 2 || code[0] < '0' || code[0] > '9' || code[1] < '0' || code[1] > '9')
        return std::nullopt;
    const int field = code.toInt();
    if (field < 1 || field > RecordText::kFieldCount)
        return std::nullopt;
    return record.Field(field);
}

// One template line filled in; nullopt when it held markers and all of them came out empty.
std::optional<QByteArray> FillLine(const QByteArray &line, const RecordText &record)
{
    QByteArray out;
    bool markers = false;
    bool values = false;
    qsizetype i = 0;
    while (i < line.size()) {
        const auto value =
            line[i] == kMarker ? MarkerValue(line.mid(i + 1, kMarkerWidth - 1), record) : std::nullopt;
        if (!value) {
            out += line[i++];
            continue;
        }
        qsizetype end = i + kMarkerWidth;
        while (end < line.size() && line[end] == ' ')
            ++end;
        const qsizetype room = end - i;
        markers = true;
        values = values || !value->isEmpty();
        if (end == line.size())
            out += *value;
        else
            out += value->left(room > kMarkerWidth ? room - 1 : room).leftJustified(room);
        i = end;
    }
    if (markers && !values)
        return std::nullopt;
    return out;
}

} // namespace

QByteArray PrintRenderer::Render(const QByteArray &templateText, const QByteArray &recordText)
{
    const RecordText record(recordText);
    QByteArray out;
    // Lines end in CR LF; a last line without one is printed with one.
    QList<QByteArray> lines = templateText.split('\n');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    for (const QByteArray &line : std::as_const(lines)) {
        if (const auto filled = FillLine(line.endsWith('\r') ? line.chopped(1) : line, record))
            out += *filled + "\r\n";
    }
    return out;
}

} // namespace kalvo::sim
