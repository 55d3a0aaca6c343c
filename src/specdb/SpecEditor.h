// The editor of a test specification without its window: what each choice does to the record, so
// that the window and kalvo-cli compose the same record from the same choices.
#pragma once

#include "specdb/SpecRecord.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <array>
#include <functional>
#include <optional>

namespace kalvo::specdb {

// The switch positions the editor offers, by entry; "Menue" is the tester's menu.
const QList<QByteArray> &SwitchCodes();

// What the regulations ask of a specification, for the editor's front ends: the default limits
// filled in after each choice that changes what the regulation asks, and the boxes whose limit is
// looser than the regulation's default (asked about before storing). Empty members do nothing.
struct RegulationRules {
    std::function<void(SpecRecord &, int regulationEntry, const QByteArray &switchCode)> defaults;
    std::function<QList<int>(const SpecRecord &, int regulationEntry, const QByteArray &switchCode)> looser;
};

class SpecEditor {
public:
    // Fills the defaults for a regulation entry and a switch code; runs after each choice that
    // changes what the regulation asks (regulation, class, type, switch position).
    using Generator = decltype(RegulationRules::defaults);

    explicit SpecEditor(Generator generator = {});

    SpecRecord &record() { return m_record; }
    const SpecRecord &record() const { return m_record; }

    // Every element "00", every box and extra empty; then class "05" (and its second coding
    // "01"), type "02", single faults "20"; then the defaults.
    void ChooseRegulation(int entry);
    void ChooseClass(int entry);
    // Entry 0 clears "applied parts insulated", 1 clears and disables it, 2 and 3 enable it.
    void ChooseType(int entry);
    void ChooseAppliedParts(int count);
    void ChooseSwitch(const QByteArray &code);
    void SetSingleFaults(const std::array<bool, 4> &boxes);
    void SetInsulatedParts(bool on);
    void SetLimit(int box, const QByteArray &text);

    // A specification read back from the store (its fields and the limits the store placed); the
    // lists and the switch position follow its elements. False when the limits were not read (the
    // boxes are then empty). Throws FormatError when its code string cannot be read.
    bool Decode(const QList<QByteArray> &fields, const std::optional<BoxTexts> &limits, int number);

    int regulationEntry() const { return m_regulation; } // -1: none chosen or none in the list
    // The regulation as the record names it ("MENUE" included); empty when its digit has none.
    QString regulationName() const;
    int classEntry() const { return m_class; }
    int typeEntry() const { return m_type; }
    int appliedParts() const { return m_appliedParts; }
    std::array<bool, 4> singleFaults() const;
    const QByteArray &switchCode() const { return m_switch; }
    bool insulatedParts() const { return m_insulated; }
    bool insulatedPartsEnabled() const { return m_insulatedEnabled; }
    // The boxes whose limit is looser than the regulation asks, by `looser` (none without it or
    // without a regulation).
    QList<int> LooserBoxes(const RegulationRules &rules) const;

private:
    QByteArray &Code(int index) { return m_record.codes[static_cast<size_t>(index)]; }
    void RunGenerator();

    Generator m_generator;
    SpecRecord m_record;
    int m_regulation = -1;
    int m_class = -1;
    int m_type = -1;
    int m_appliedParts = -1;
    QByteArray m_switch = "00";
    bool m_insulated = false;
    bool m_insulatedEnabled = true;
};

} // namespace kalvo::specdb
