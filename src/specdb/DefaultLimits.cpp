// The generator of default limits: runs the table of the regulations over a specification.
#include "DefaultLimits.h"

#include "DefaultLimitTable.h"
#include "LimitText.h"
#include "SpecChunks.h"

#include <QList>

namespace kalvo::specdb {

namespace {

bool Lists(const char *list, const QByteArray &value)
{
    return QByteArray(list).split(' ').contains(value);
}

// Element 1, the protection class in its second coding.
QByteArray SecondClassCode(const QByteArray &protectionClass)
{
    if (protectionClass == "06")
        return "00";
    if (protectionClass == "07")
        return "02";
    return "01";
}

// A class other than "06" and "07" takes the class I rows.
QByteArray ClassForRows(const QByteArray &protectionClass)
{
    return protectionClass == "06" || protectionClass == "07" ? protectionClass : QByteArray("05");
}

// The switch position as element 19: its own code, "00" for the menu or anything else.
QByteArray SwitchElement(const QByteArray &switchCode)
{
    for (const SwitchPosition &position : SwitchPositions()) {
        if (switchCode == position.code && switchCode.size() == 2)
            return switchCode;
    }
    return "00";
}

// The rows behind the limits 1..22 for one regulation, class, type and switch position; nullptr
// where none.
std::array<const DefaultLimit *, kLimitSlots> TableRows(int regulationEntry,
                                                        const QByteArray &protectionClass,
                                                        const QByteArray &appliedPart,
                                                        const QByteArray &switchCode)
{
    std::array<const DefaultLimit *, kLimitSlots> rows{};
    const QByteArray cls = ClassForRows(protectionClass);
    for (const DefaultLimit &row : DefaultLimitRows()) {
        if (static_cast<int>(row.regulation) == regulationEntry && Lists(row.classes, cls) &&
            Lists(row.types, appliedPart) && (!row.switches || Lists(row.switches, switchCode)))
            rows[row.box] = &row; // a later row wins
    }
    return rows;
}

std::array<QByteArray, kLimitSlots> TableLimits(int regulationEntry, const QByteArray &protectionClass,
                                                const QByteArray &appliedPart, const QByteArray &switchCode)
{
    std::array<QByteArray, kLimitSlots> limits;
    const auto rows = TableRows(regulationEntry, protectionClass, appliedPart, switchCode);
    for (int box = 1; box <= kLimitBoxes; ++box) {
        if (rows[box])
            limits[box] = LimitFromText(QString::fromUtf8(rows[box]->text));
    }
    return limits;
}

} // namespace

void ApplyDefaults(SpecRecord &record, int regulationEntry, const QByteArray &switchCode)
{
    for (int box = 1; box < kLimitSlots; ++box) {
        record.limits[box].clear();
        record.extras[box].clear();
    }
    const QByteArray protectionClass = record.codes[14];
    record.codes[1] = SecondClassCode(protectionClass);
    record.codes[18] = "00";
    record.codes[19] = SwitchElement(switchCode);
    for (const RegulationCodes &codes : RegulationCodeRows()) {
        if (static_cast<int>(codes.regulation) != regulationEntry)
            continue;
        record.codes[6] = codes.element6;
        if (codes.regulation == Regulation::Custom && switchCode == "Menue")
            record.codes[6] = "80";
        if (codes.element17)
            record.codes[17] = codes.element17;
        if (codes.element18)
            record.codes[18] = codes.element18;
    }
    for (const ClassCode &row : ClassCodeRows()) {
        if (static_cast<int>(row.regulation) == regulationEntry &&
            ClassForRows(protectionClass) == row.protectionClass)
            record.codes[18] = row.element18;
    }
    const auto limits = TableLimits(regulationEntry, protectionClass, record.codes[15], switchCode);
    for (int box = 1; box <= kLimitBoxes; ++box)
        record.limits[box] = limits[box];
}

QList<BoxDefault> DefaultsFor(int regulationEntry, const QByteArray &protectionClass,
                              const QByteArray &appliedPart, const QByteArray &switchCode)
{
    const auto rows = TableRows(regulationEntry, protectionClass, appliedPart, switchCode);
    QList<BoxDefault> defaults;
    for (int box = 1; box <= kLimitBoxes; ++box) {
        const DefaultLimit *row = rows[box];
        if (!row) {
            defaults.append({box, {}, {}});
            continue;
        }
        QString source = QString::fromUtf8(row->source);
        if (row->choice == Choice::Ours)
            source.prepend(QStringLiteral("unsere Wahl: "));
        defaults.append({box, LimitFromText(QString::fromUtf8(row->text)), source});
    }
    return defaults;
}

QString SwitchMeaning(const QByteArray &switchCode)
{
    for (const SwitchPosition &position : SwitchPositions()) {
        if (switchCode == position.code)
            return QString::fromUtf8(position.meaning);
    }
    return {};
}

QList<int> LooserLimits(const SpecRecord &record, int regulationEntry, const QByteArray &switchCode)
{
    const auto defaults = TableLimits(regulationEntry, record.codes[14], record.codes[15], switchCode);
    QList<int> looser;
    for (int box = 1; box <= kLimitBoxes; ++box) {
        if (IsLooser(record.limits[box], defaults[box]))
            looser << box;
    }
    return looser;
}

} // namespace kalvo::specdb
