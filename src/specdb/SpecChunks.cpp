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

QByteArray TesterText(const QString &typed)
{
    // The display conversion's nine characters, back to the tester's codes.
    static const std::pair<char16_t, char> kCodes[] = {
        {u'\u00B5', '\xE6'}, {u'\u03BC', '\xE6'}, {u'Ä', '\x8E'}, {u'Ö', '\x99'}, {u'Ü', '\x9A'},
        {u'ß', '\xE1'},      {u'ä', '\x84'},      {u'ö', '\x94'}, {u'ü', '\x81'},
    };
    QByteArray bytes;
    qsizetype run = 0; // where the text not yet converted begins
    for (qsizetype i = 0; i < typed.size(); ++i) {
        const auto code = std::find_if(std::begin(kCodes), std::end(kCodes),
                                       [&](const auto &pair) { return typed[i] == QChar(pair.first); });
        if (code == std::end(kCodes))
            continue;
        bytes += link::EncodeTesterText(typed.mid(run, i - run)) + code->second;
        run = i + 1;
    }
    return bytes + link::EncodeTesterText(typed.mid(run));
}

QByteArray LimitFromText(const QString &text)
{
    static const QRegularExpression ohm(QStringLiteral("Ohm|\u03A9|\u2126"));
    QByteArray bytes;
    qsizetype at = 0;
    for (auto match = ohm.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        bytes += TesterText(text.mid(at, found.capturedStart() - at)) + kOhm;
        at = found.capturedEnd();
    }
    return bytes + TesterText(text.mid(at));
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
