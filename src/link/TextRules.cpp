// Taking tester answers apart and turning tester bytes into text.
#include "TextRules.h"

#include "CodePages.h"
#include "Errors.h"

#include <QHash>
#include <QStringDecoder>
#include <array>

namespace kalvo::link {

QByteArray StripControlChars(const QByteArray &text)
{
    QByteArray out;
    out.reserve(text.size());
    for (char ch : text)
        if (static_cast<unsigned char>(ch) >= 30)
            out.append(ch);
    return out;
}

QString DecodeTesterText(const QByteArray &bytes)
{
    return DecodeCodePage(CodePage::Ibm437, bytes);
}

QString DecodePcText(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    return DecodeCodePage(CodePage::Windows1252, bytes);
}

namespace {

// The tester's byte for each character it can show: its code page, and the characters the
// display conversion gives its codes (230 is "µ", the micro sign a keyboard types, where the code
// page has the Greek letter).
const QHash<char16_t, char> &TesterBytes()
{
    static const QHash<char16_t, char> bytes = [] {
        QHash<char16_t, char> b;
        for (int c = 128; c < 256; ++c) {
            const QByteArray code(1, static_cast<char>(c));
            for (const QString &shown :
                 {DecodeTesterText(code), ConvertDisplayChar(static_cast<unsigned char>(c))})
                if (shown.size() == 1 && shown[0] != QChar::ReplacementCharacter)
                    b.insert(shown[0].unicode(), code[0]);
        }
        b.insert(u'\u2126', '\xea'); // the ohm sign, beside the Greek capital omega
        return b;
    }();
    return bytes;
}

} // namespace

QByteArray EncodeTesterText(const QString &text)
{
    const QHash<char16_t, char> &tester = TesterBytes();
    QByteArray out;
    out.reserve(text.size());
    for (const QChar ch : text) {
        if (ch.unicode() < 128)
            out += static_cast<char>(ch.unicode());
        else
            out += tester.value(ch.unicode(), '?');
    }
    return out;
}

namespace {

// The display drops control bytes, "#", "@", 123..127 and 253 and above.
bool DroppedByDisplay(unsigned char c)
{
    return c < 32 || c == '#' || c == '@' || (c >= 123 && c <= 127) || c >= 253;
}

// The nine tester codes the display conversion maps, as Windows-1252 bytes (they are Latin-1 as
// well); nullptr for every other code.
const char *MappedWindowsBytes(unsigned char c)
{
    switch (c) {
    case 230: return "\xb5"; // µ
    case 234: return "Ohm";  // the ohm sign, deliberately spelt out
    case 142: return "\xc4"; // Ä
    case 153: return "\xd6"; // Ö
    case 154: return "\xdc"; // Ü
    case 225: return "\xdf"; // ß
    case 132: return "\xe4"; // ä
    case 148: return "\xf6"; // ö
    case 129: return "\xfc"; // ü
    default: return nullptr;
    }
}

// What each byte of a record text shows as; built once, since reports look up every byte.
const std::array<QString, 256> &RecordTextTable()
{
    static const std::array<QString, 256> table = [] {
        std::array<QString, 256> t;
        for (int c = 32; c < 256; ++c) {
            const auto code = static_cast<unsigned char>(c);
            if (c == 127)
                continue;
            if (const char *mapped = MappedWindowsBytes(code))
                t[code] = QString::fromLatin1(mapped);
            else
                t[code] = DecodeCodePage(CodePage::Windows1252, QByteArray(1, static_cast<char>(code)));
        }
        return t;
    }();
    return table;
}

} // namespace

QString ConvertDisplayChar(unsigned char c)
{
    if (DroppedByDisplay(c))
        return {};
    if (const char *mapped = MappedWindowsBytes(c))
        return QString::fromLatin1(mapped);
    if (c < 128)
        return QString(QChar(c));
    return DecodeTesterText(QByteArray(1, static_cast<char>(c)));
}

QString ConvertDisplayText(const QByteArray &bytes)
{
    QString out;
    out.reserve(bytes.size());
    for (char ch : bytes)
        out += ConvertDisplayChar(static_cast<unsigned char>(ch));
    return out;
}

QByteArray ConvertDisplayBytes(const QByteArray &bytes)
{
    QByteArray out;
    out.reserve(bytes.size());
    for (const char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if (DroppedByDisplay(c))
            continue;
        if (const char *mapped = MappedWindowsBytes(c))
            out += mapped;
        else
            out += ch;
    }
    return out;
}

QString DecodeRecordText(const QByteArray &bytes)
{
    const std::array<QString, 256> &table = RecordTextTable();
    QString out;
    out.reserve(bytes.size());
    for (const char ch : bytes)
        out += table[static_cast<unsigned char>(ch)];
    return out;
}

QByteArray FieldBetween(const QByteArray &text, const QByteArray &startMark, const QByteArray &endMark)
{
    // A missing start mark reads from the beginning, as the position arithmetic gives.
    const qsizetype start = text.indexOf(startMark) + 1;
    if (endMark.isEmpty())
        return text.mid(start);
    const qsizetype end = text.indexOf(endMark);
    if (end < start)
        throw FormatError(QStringLiteral("\"%1\"").arg(QString::fromLatin1(text)), 0,
                          QStringLiteral("\"%1\" hinter \"%2\"")
                              .arg(QString::fromLatin1(endMark), QString::fromLatin1(startMark)));
    return text.mid(start, end - start);
}

qsizetype PositionOf(const QByteArray &text, const QByteArray &needle)
{
    return text.indexOf(needle) + 1;
}

QByteArray ValueBeforeYes(const QByteArray &answer)
{
    const qsizetype yes = answer.indexOf(".Y");
    if (yes < 0)
        return {};
    const qsizetype from = std::max<qsizetype>(0, yes - 2);
    return answer.mid(from, yes - from);
}

static int DigitValue(char ch, int base)
{
    int v = -1;
    if (ch >= '0' && ch <= '9')
        v = ch - '0';
    else if (ch >= 'A' && ch <= 'F')
        v = ch - 'A' + 10;
    else if (ch >= 'a' && ch <= 'f')
        v = ch - 'a' + 10;
    return v < base ? v : -1;
}

double NumericValue(const QByteArray &text)
{
    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n && (text[i] == ' ' || text[i] == '\t'))
        ++i;
    if (i + 1 < n && text[i] == '&' && (text[i + 1] == 'H' || text[i + 1] == 'h')) {
        // In floating point, so that any number of digits gives a large value, never a wrapped one.
        double value = 0;
        for (i += 2; i < n && DigitValue(text[i], 16) >= 0; ++i)
            value = value * 16 + DigitValue(text[i], 16);
        return value;
    }
    double sign = 1;
    if (i < n && (text[i] == '-' || text[i] == '+')) {
        sign = text[i] == '-' ? -1 : 1;
        ++i;
    }
    double value = 0;
    for (; i < n && DigitValue(text[i], 10) >= 0; ++i)
        value = value * 10 + (text[i] - '0');
    if (i < n && text[i] == '.') {
        double scale = 0.1;
        for (++i; i < n && DigitValue(text[i], 10) >= 0; ++i, scale /= 10)
            value += (text[i] - '0') * scale;
    }
    return sign * value;
}

namespace {

struct LeadingNumber {
    bool any = false;      // digits were found
    bool tooLarge = false; // beyond any range a caller uses
    qint64 value = 0;
};

LeadingNumber ReadLeadingNumber(const QByteArray &text)
{
    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n && (text[i] == ' ' || text[i] == '\t'))
        ++i;
    int base = 10;
    bool negative = false;
    if (i + 1 < n && text[i] == '&' && (text[i + 1] == 'H' || text[i + 1] == 'h')) {
        base = 16;
        i += 2;
    } else if (i < n && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
        ++i;
    }
    // No range here comes near this; a number beyond it is too large whatever the range says.
    constexpr qint64 kCeiling = qint64(1) << 53;
    LeadingNumber result;
    qint64 magnitude = 0;
    for (; i < n && DigitValue(text[i], base) >= 0; ++i) {
        result.any = true;
        magnitude = magnitude * base + DigitValue(text[i], base);
        if (magnitude > kCeiling) {
            result.tooLarge = true;
            magnitude = kCeiling;
        }
    }
    result.value = negative ? -magnitude : magnitude;
    return result;
}

} // namespace

std::optional<qint64> WholeNumber(const QByteArray &text, qint64 minimum, qint64 maximum)
{
    const LeadingNumber number = ReadLeadingNumber(text);
    if (!number.any || number.tooLarge || number.value < minimum || number.value > maximum)
        return std::nullopt;
    return number.value;
}

bool HasLeadingNumber(const QByteArray &text)
{
    return ReadLeadingNumber(text).any;
}

QList<QByteArray> SplitFields(const QByteArray &answer)
{
    QList<QByteArray> fields;
    for (const QByteArray &field : answer.split(';'))
        fields.append(StripControlChars(field));
    return fields;
}

QList<QByteArray> SplitLines(const QByteArray &bytes)
{
    QList<QByteArray> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '\r' && bytes[i] != '\n')
            continue;
        lines.append(bytes.mid(start, i - start));
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')
            ++i;
        start = i + 1;
    }
    if (start < bytes.size())
        lines.append(bytes.mid(start));
    return lines;
}

QString EscapeBytes(const QByteArray &bytes)
{
    QString out;
    for (char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '\r')
            out += QStringLiteral("\\r");
        else if (c == '\n')
            out += QStringLiteral("\\n");
        else if (c == '\\')
            out += QStringLiteral("\\\\");
        else if (c >= 32 && c < 127)
            out += QChar(c);
        else
            out += QStringLiteral("\\x%1").arg(c, 2, 16, QChar('0'));
    }
    return out;
}

} // namespace kalvo::link
