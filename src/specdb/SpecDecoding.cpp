// What the code elements of a specification mean to the editor, and a record of the store read
// back into the editor's record.
#include "SpecDecoding.h"

#include "link/Errors.h"

namespace kalvo::specdb {

namespace {

// Regulation names by the first digit of element 6 (index = digit); the decoding side knows
// "MENUE", which the editor's list does not offer.
const char *const kNamesByDigit[] = {
    "",         "VDE 0701 T.1", "VDE 0701 T.200",  "VDE 0701 T.240", "VDE 0701 T.260",
    "VDE 0702", "VDE 0751",     "EN 60601",        "MENUE",          "EN 61010",
    "EN 60335", "EN 60950",     "British Standard"};
constexpr int kLastDigit = 12;

int FirstDigit(const QByteArray &element)
{
    bool ok = false;
    const int digit = element.left(1).toInt(&ok, 16);
    return ok ? digit : -1;
}

int TwoDigitNumber(const QByteArray &element, int base)
{
    if (element.size() != 2)
        return -1;
    bool ok = false;
    const int value = element.toInt(&ok, base);
    return ok ? value : -1;
}

bool IsHex(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

} // namespace

const QStringList &RegulationList()
{
    static const QStringList list{QStringLiteral("VDE 0701 T.1"),     QStringLiteral("VDE 0701 T.200"),
                                  QStringLiteral("VDE 0701 T.240"),   QStringLiteral("VDE 0701 T.260"),
                                  QStringLiteral("VDE 0702"),         QStringLiteral("VDE 0751"),
                                  QStringLiteral("EN 60601"),         QStringLiteral("EN 61010"),
                                  QStringLiteral("EN 60335"),         QStringLiteral("EN 60950"),
                                  QStringLiteral("British Standard"), QStringLiteral("custom")};
    return list;
}

QString RegulationName(const QByteArray &element6)
{
    const int digit = FirstDigit(element6);
    return digit >= 1 && digit <= kLastDigit ? QString::fromLatin1(kNamesByDigit[digit]) : QString();
}

int RegulationEntry(const QByteArray &element6)
{
    return static_cast<int>(RegulationList().indexOf(RegulationName(element6)));
}

QByteArray ClassCode(int entry)
{
    return entry == 2 ? "06" : entry == 3 ? "07" : "05";
}

int ClassEntry(const QByteArray &element14)
{
    return element14 == "05" ? 0 : element14 == "06" ? 2 : element14 == "07" ? 3 : -1;
}

QByteArray TypeCode(int entry)
{
    return "0" + QByteArray::number(std::clamp(entry, 0, 3));
}

int TypeEntry(const QByteArray &element15)
{
    const int value = TwoDigitNumber(element15, 10);
    return value >= 0 && value <= 3 ? value : -1;
}

QByteArray AppliedPartsCode(int count)
{
    return QByteArray::number(std::clamp(count, 0, kMaxAppliedParts)).rightJustified(2, '0');
}

int AppliedPartsEntry(const QByteArray &element16)
{
    const int value = TwoDigitNumber(element16, 10);
    return value >= 0 && value <= kMaxAppliedParts ? value : -1;
}

QByteArray SingleFaultCode(const std::array<bool, 4> &boxes)
{
    const int sum = (boxes[3] ? 128 : 0) + (boxes[2] ? 64 : 0) + (boxes[1] ? 32 : 0) + (boxes[0] ? 1 : 0);
    return QByteArray::number(sum, 16).toUpper().rightJustified(2, '0');
}

std::array<bool, 4> SingleFaultBoxes(const QByteArray &element8)
{
    const int value = std::max(TwoDigitNumber(element8, 16), 0);
    return {(value & 1) != 0, (value & 32) != 0, (value & 64) != 0, (value & 128) != 0};
}

bool DecodeSpecRecord(const QList<QByteArray> &fields, const std::optional<BoxTexts> &limits, int number,
                      SpecRecord &record)
{
    const QByteArray codes = fields.value(1);
    if (codes.size() < 2 * kSentCodes || !std::all_of(codes.begin(), codes.begin() + 2 * kSentCodes, IsHex))
        throw link::FormatError(QStringLiteral("Prüfablauf %1").arg(number), 0,
                                QStringLiteral("40 Hexadezimalziffern der Codes im Feld 1"));
    for (int k = 0; k < kSentCodes; ++k)
        record.codes[static_cast<size_t>(k)] = codes.mid(2 * k, 2).toUpper();
    for (int box = 1; box <= kLimitBoxes; ++box)
        record.limits[static_cast<size_t>(box)] = limits ? (*limits)[static_cast<size_t>(box)] : QByteArray();
    return limits.has_value();
}

QString LimitsNotReadText(int number)
{
    return QStringLiteral("Die Grenzwerte von Datensatz %1 wurden nicht gelesen: die Teile, in denen das "
                          "Kalvomer ihn sendet, lassen sich nicht eindeutig zusammensetzen. Gezeigt sind "
                          "die Codes; die Grenzwertfelder sind leer.")
        .arg(number);
}

QList<QByteArray> StoredFields(const SpecRecord &record, const QByteArray &label)
{
    QByteArray codes;
    for (int k = 0; k < kSentCodes; ++k)
        codes += record.codes[static_cast<size_t>(k)];
    QList<QByteArray> fields{"DATABASE", codes, label, {}, {}};
    for (int box = 1; box <= kLimitBoxes; ++box)
        fields << record.extras[static_cast<size_t>(box)] << record.limits[static_cast<size_t>(box)];
    return fields;
}

} // namespace kalvo::specdb
