// The forms the virtual tester answers in: the plain one, and odd ones that a tester may also send.
#include "AnswerStyle.h"

#include <QRegularExpression>
#include <array>

namespace kalvo::sim {

namespace {

constexpr char kDC1 = '\x11';
const QByteArray kPlainEnd = QByteArray("\r\n") + kDC1;
// How much of a "prx!add " line the odd style echoes.
constexpr qsizetype kAddEchoLength = 24;

struct StyleEntry {
    AnswerStyle style;
    const char *name;
};
constexpr std::array<StyleEntry, 2> kStyles{{{AnswerStyle::Plain, "plain"}, {AnswerStyle::Odd, "odd"}}};

// Marks that answers are taken apart at: an echo in capitals must neither add nor lose one.
const std::array<QByteArray, 8> kMarks{".N", ".Y", "BGW", "XXXXXXXX", "QRT4027", "KYM", "DATABASE", " V"};

// The mnemonic and its argument in capitals; a value behind a blank or a comma as it was sent.
QByteArray CapitalEcho(const QByteArray &line)
{
    qsizetype end = line.size();
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] == ' ' || line[i] == ',') {
            end = i;
            break;
        }
    }
    const QByteArray echo = line.left(end).toUpper() + line.mid(end);
    for (const QByteArray &mark : kMarks) {
        if (echo.count(mark) != line.count(mark))
            return line;
    }
    return echo;
}

std::optional<QRegularExpressionMatch> Match(const QRegularExpression &pattern, const QByteArray &text)
{
    const auto match = pattern.match(QString::fromLatin1(text));
    if (!match.hasMatch())
        return std::nullopt;
    return match;
}

QByteArray Captured(const QRegularExpressionMatch &match, int group)
{
    return match.captured(group).toLatin1();
}

// "=0A.Y" → "= A.Y": a value below 10 hex as one digit behind a blank, where two characters are read.
std::optional<QByteArray> RegisterValue(const QByteArray &payload)
{
    static const QRegularExpression value(QStringLiteral(R"(^=([0-9A-F])([0-9A-F])\.Y$)"));
    const auto match = Match(value, payload);
    if (!match)
        return std::nullopt;
    const QByteArray high = Captured(*match, 1) == "0" ? QByteArray(" ") : Captured(*match, 1);
    return "=" + high + Captured(*match, 2) + ".Y\n" + kDC1;
}

// " BGW <030.0 mA.Y" → "BGW <30.0mA.Y", " BGW +250 V.Y" → "BGW +250  V.Y": no echo (its "bgw" in
// capitals would be the first "BGW"), no leading zero, other blanks; the digits still stand five
// places after the "B".
std::optional<QByteArray> LimitValue(const QByteArray &payload)
{
    static const QRegularExpression limit(QStringLiteral(R"(^ BGW ([<+])0*(\d+)(\.0)? (mA|V)\.Y$)"));
    const auto match = Match(limit, payload);
    if (!match)
        return std::nullopt;
    const QByteArray unit =
        Captured(*match, 4) == "mA" ? Captured(*match, 3) + "mA" : QByteArray("  ") + Captured(*match, 4);
    return "BGW " + Captured(*match, 1) + Captured(*match, 2) + unit + ".Y\r\n" + kDC1;
}

// "= dd.mm.yy; hh:mm:ss" → tabs instead of the blanks: date and time still begin two characters
// after "=" and ";"; blanks behind the time.
std::optional<QByteArray> ClockValue(const QByteArray &echo, const QByteArray &payload)
{
    static const QRegularExpression clock(QStringLiteral(R"(^= (\d\d\.\d\d\.\d\d); (\d\d:\d\d:\d\d)$)"));
    const auto match = Match(clock, payload);
    if (!match)
        return std::nullopt;
    return echo + "=\t" + Captured(*match, 1) + ";\t" + Captured(*match, 2) + "  \r\n" + kDC1;
}

std::optional<QByteArray> Rewrite(const QByteArray &line, const QByteArray &payload)
{
    const QByteArray lower = line.toLower();
    const QByteArray echo = CapitalEcho(line);
    if (lower == "dis?") {
        // No echo; the code without its leading zero: ".Y" still stands at position 3.
        bool ok = false;
        const int code = payload.trimmed().chopped(2).toInt(&ok);
        if (!ok)
            return std::nullopt;
        return QByteArray::number(code).rightJustified(2, ' ') + ".Y" + kDC1;
    }
    if (lower == "ver?") {
        QByteArray dates = payload;
        return echo + dates.replace('.', '/') + "\r\n" + kDC1;
    }
    if (lower == "idn?") {
        // The device type names its regulation, so a " V" stands in front of the firmware's own;
        // no CR LF.
        QByteArray fields = payload;
        const qsizetype typeEnd = fields.indexOf(';', 1);
        if (fields.startsWith(";Kalvomer") && typeEnd > 0)
            fields.insert(typeEnd, " VDE 0701");
        return echo + fields + kDC1;
    }
    if (lower.startsWith("var?") || lower.startsWith("bit?")) {
        const auto value = RegisterValue(payload);
        return value ? std::optional(echo + *value) : std::nullopt;
    }
    if (lower.startsWith("kal?"))
        return payload + "\r\n" + kDC1;
    if (lower.startsWith("wer?bgw"))
        return LimitValue(payload);
    if (lower == "dat?")
        return ClockValue(echo, payload);
    if (lower.startsWith("str?") || lower == "esr?")
        return echo + payload + "\r\n" + kDC1;
    if (lower == "prn?")
        return echo + payload + kDC1;
    if (lower.startsWith("prn?") && payload.contains("\\v")) {
        // A template: another header in front of the mark, the same bytes behind it.
        return echo + ":" + payload.mid(payload.indexOf("\\v")) + "\r\n" + kDC1;
    }
    if (lower == "prx?n")
        return echo + "=   " + payload.mid(1).trimmed() + "\r\n" + kDC1;
    if (lower == "prx?")
        return payload + kDC1;
    if (lower.startsWith("prx?") && (payload.startsWith(':') || payload.startsWith('=')) &&
        payload.endsWith('.')) {
        // A record chunk: another four-character trailer instead of "." CR LF DC1.
        return echo + payload.chopped(1) + "  \n" + kDC1;
    }
    if (lower.startsWith("prx!add") && payload == ".Y") {
        // The echo as far as the tester's buffer holds it: a name such as "DR.NEU" comes back in
        // front of the ".Y", which is judged by itself.
        return echo.left(kAddEchoLength) + ".Y\n" + kDC1;
    }
    if (lower.size() > 3 && lower[3] == '!' && payload == ".Y")
        return QByteArray(".Y\n") + kDC1;
    return std::nullopt;
}

} // namespace

std::optional<AnswerStyle> ParseAnswerStyle(const QString &name)
{
    for (const StyleEntry &entry : kStyles) {
        if (name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0)
            return entry.style;
    }
    return std::nullopt;
}

QString AnswerStyleName(AnswerStyle style)
{
    for (const StyleEntry &entry : kStyles) {
        if (entry.style == style)
            return QString::fromLatin1(entry.name);
    }
    return {};
}

QStringList AnswerStyleNames()
{
    QStringList names;
    for (const StyleEntry &entry : kStyles)
        names << QString::fromLatin1(entry.name);
    return names;
}

QByteArray OddAnswer(const QByteArray &line, const QByteArray &answer)
{
    if (!answer.startsWith(line) || !answer.endsWith(kPlainEnd))
        return answer;
    const QByteArray payload = answer.mid(line.size(), answer.size() - line.size() - kPlainEnd.size());
    if (payload.contains("Protokoll") || payload.endsWith(".N") || payload.endsWith(".Nx"))
        return answer;
    return Rewrite(line, payload).value_or(answer);
}

QList<QByteArray> OddBursts(const QByteArray &answer)
{
    if (answer.size() < 3)
        return {answer};
    return {answer.left(1), answer.mid(1, answer.size() - 2), answer.right(1)};
}

} // namespace kalvo::sim
