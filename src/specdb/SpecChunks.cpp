// A test specification cut into the three chunks that "prx!add " carries, and the commands for them.
#include "SpecChunks.h"

#include "LimitText.h"

#include "link/TextRules.h"

#include <QRegularExpression>

namespace kalvo::specdb {

namespace {

// The items (extra field and limit) each chunk of the editor's upload carries.
constexpr int kFirstChunkLast = 8;
constexpr int kSecondChunkLast = 16;

QByteArray TwoDigits(int value)
{
    return QByteArray::number(value).rightJustified(2, '0');
}

void AppendItems(QByteArray &chunk, const SpecRecord &record, int first, int last)
{
    for (int i = first; i <= last; ++i)
        chunk += ';' + record.extras[static_cast<size_t>(i)] + ';' + record.limits[static_cast<size_t>(i)];
}

bool HasSeparatorOrControl(const QByteArray &text)
{
    for (const char c : text) {
        if (c == ';' || static_cast<unsigned char>(c) < 32 || c == '\x7F')
            return true;
    }
    return false;
}

} // namespace

RecordChunks BuildRecord(SpecRecord &record, const QDateTime &now)
{
    RecordChunks chunks;
    QByteArray codes;
    for (int i = 0; i < kSentCodes; ++i) {
        QByteArray &code = record.codes[static_cast<size_t>(i)];
        if (code.size() != 2) {
            code = "00";
            chunks.replacedCodes << i;
        }
        codes += code;
    }
    for (QByteArray &extra : record.extras)
        extra.clear();
    // The tester's own form: two-digit date, the time without leading zeros (9:5:7).
    const QDate date = now.date();
    const QTime time = now.time();
    const QByteArray day =
        TwoDigits(date.day()) + '.' + TwoDigits(date.month()) + '.' + TwoDigits(date.year() % 100);
    const QByteArray clock = QByteArray::number(time.hour()) + ':' + QByteArray::number(time.minute()) + ':' +
                             QByteArray::number(time.second());
    chunks.part1 = " ;" + codes + ';' + day + ';' + clock;
    AppendItems(chunks.part1, record, 1, kFirstChunkLast);
    AppendItems(chunks.part2, record, kFirstChunkLast + 1, kSecondChunkLast);
    AppendItems(chunks.part3, record, kSecondChunkLast + 1, kLimitBoxes);
    return chunks;
}

QByteArray RunningLabel(int entries, const QByteArray &name)
{
    return TwoDigits(entries + 1) + ' ' + name;
}

std::array<QByteArray, 3> EditorCommands(const QByteArray &label, const RecordChunks &chunks)
{
    return {"prx!add " + label + ';' + chunks.part1, "prx!add &9" + chunks.part2,
            "prx!add &17" + chunks.part3};
}

bool UsableName(const QByteArray &name)
{
    return !name.trimmed().isEmpty() && !HasSeparatorOrControl(name);
}

bool LimitFits(int box, const QByteArray &text)
{
    if (text.isEmpty())
        return true;
    if (HasSeparatorOrControl(text))
        return false;
    const qsizetype width = text.size();
    switch (box) {
    case 4: return width == 6;
    case 22: return width == 7;
    case 1:
    case 2: return width == 7 || width == 8;
    case 6:
    case 7: return width == 5 || width == 8;
    default: return box >= 1 && box <= kLimitBoxes && width == 8;
    }
}

QByteArray LimitFromText(const QString &text)
{
    static const QRegularExpression ohm(QStringLiteral("Ohm|\u03A9|\u2126"));
    QByteArray bytes;
    qsizetype at = 0;
    for (auto match = ohm.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        bytes += link::EncodeTesterText(text.mid(at, found.capturedStart() - at)) + kOhm;
        at = found.capturedEnd();
    }
    return bytes + link::EncodeTesterText(text.mid(at));
}

QList<int> MisfitLimits(const SpecRecord &record)
{
    QList<int> boxes;
    for (int box = 1; box <= kLimitBoxes; ++box) {
        if (!LimitFits(box, record.limits[static_cast<size_t>(box)]))
            boxes << box;
    }
    return boxes;
}

} // namespace kalvo::specdb
