// The editor of a test specification without its window: what each choice does to the record, so
// that the window and kalvo-cli compose the same record from the same choices.
#include "SpecEditor.h"

#include "SpecDecoding.h"

namespace kalvo::specdb {

namespace {
constexpr int kElementSecondClass = 1;
constexpr int kElementRegulation = 6;
constexpr int kElementSingleFaults = 8;
constexpr int kElementClass = 14;
constexpr int kElementType = 15;
constexpr int kElementAppliedParts = 16;
constexpr int kElementSwitch = 19;
} // namespace

const QList<QByteArray> &SwitchCodes()
{
    static const QList<QByteArray> codes{"00", "05", "01", "02", "20", "Menue"};
    return codes;
}

SpecEditor::SpecEditor(Generator generator) : m_generator(std::move(generator))
{}

void SpecEditor::ChooseRegulation(int entry)
{
    for (QByteArray &code : m_record.codes)
        code = "00";
    for (QByteArray &limit : m_record.limits)
        limit.clear();
    for (QByteArray &extra : m_record.extras)
        extra.clear();
    m_regulation = entry;
    Code(kElementClass) = "05";
    Code(kElementSecondClass) = "01";
    Code(kElementType) = "02";
    Code(kElementSingleFaults) = "20";
    m_class = 0;
    m_type = 2;
    m_appliedParts = 0;
    m_insulatedEnabled = true;
    RunGenerator();
}

void SpecEditor::ChooseClass(int entry)
{
    Code(kElementClass) = ClassCode(entry);
    m_class = entry;
    RunGenerator();
}

void SpecEditor::ChooseType(int entry)
{
    Code(kElementType) = TypeCode(entry);
    m_type = entry;
    if (entry <= 1)
        m_insulated = false;
    m_insulatedEnabled = entry != 1;
    RunGenerator();
}

void SpecEditor::ChooseAppliedParts(int count)
{
    Code(kElementAppliedParts) = AppliedPartsCode(count);
    m_appliedParts = AppliedPartsEntry(Code(kElementAppliedParts));
}

void SpecEditor::ChooseSwitch(const QByteArray &code)
{
    m_switch = code;
    RunGenerator();
}

void SpecEditor::SetSingleFaults(const std::array<bool, 4> &boxes)
{
    Code(kElementSingleFaults) = SingleFaultCode(boxes);
}

void SpecEditor::SetInsulatedParts(bool on)
{
    m_insulated = on && m_insulatedEnabled;
}

void SpecEditor::SetLimit(int box, const QByteArray &text)
{
    if (box >= 1 && box <= kLimitBoxes)
        m_record.limits[static_cast<size_t>(box)] = text;
}

bool SpecEditor::Decode(const QList<QByteArray> &fields, const std::optional<BoxTexts> &limits, int number)
{
    SpecRecord decoded = m_record;
    const bool limitsRead = DecodeSpecRecord(fields, limits, number, decoded);
    m_record = decoded;
    // Element 19 holds the switch position; the custom sequence of the menu says so in element 6.
    const QByteArray switchCode = Code(kElementSwitch);
    m_switch = Code(kElementRegulation) == "80"     ? QByteArray("Menue")
               : SwitchCodes().contains(switchCode) ? switchCode
                                                    : QByteArray("00");
    m_regulation = RegulationEntry(Code(kElementRegulation));
    m_class = ClassEntry(Code(kElementClass));
    m_type = TypeEntry(Code(kElementType));
    m_appliedParts = AppliedPartsEntry(Code(kElementAppliedParts));
    m_insulatedEnabled = m_type != 1;
    return limitsRead;
}

QString SpecEditor::regulationName() const
{
    return RegulationName(m_record.codes[kElementRegulation]);
}

std::array<bool, 4> SpecEditor::singleFaults() const
{
    return SingleFaultBoxes(m_record.codes[kElementSingleFaults]);
}

QList<int> SpecEditor::LooserBoxes(const RegulationRules &rules) const
{
    if (!rules.looser || m_regulation < 0)
        return {};
    return rules.looser(m_record, m_regulation, m_switch);
}

void SpecEditor::RunGenerator()
{
    if (m_generator && m_regulation >= 0)
        m_generator(m_record, m_regulation, m_switch);
}

} // namespace kalvo::specdb
