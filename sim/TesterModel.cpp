// What the virtual tester answers to one command line, and the memory its answers come from.
#include "TesterModel.h"

#include "ConfigCommands.h"
#include "DisplayFrame.h"
#include "RecordCommands.h"

#include <QRegularExpression>

namespace kalvo::sim {

namespace {

constexpr char kDC1 = '\x11';
const QByteArray kYes = ".Y";
const QByteArray kNo = ".N";
const QByteArray kRefusedSetting = ".Nx";

bool IsHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

// One or two hexadecimal digits and nothing else; the tester is no more lenient than that.
std::optional<int> HexByte(const QByteArray &text, int minDigits = 1)
{
    if (text.size() < minDigits || text.size() > 2)
        return std::nullopt;
    for (char c : text) {
        if (!IsHexDigit(c))
            return std::nullopt;
    }
    return text.toInt(nullptr, 16);
}

std::optional<int> Decimal(const QByteArray &text, int maxDigits)
{
    if (text.isEmpty() || text.size() > maxDigits)
        return std::nullopt;
    for (char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
    }
    return text.toInt();
}

QByteArray HexText(int value)
{
    return QByteArray::number(value, 16).toUpper().rightJustified(2, '0');
}

// "D3 1" or "D3,1": the argument and the value behind one blank or one comma.
std::optional<std::pair<QByteArray, QByteArray>> ArgumentAndValue(const QByteArray &text)
{
    qsizetype separator = -1;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == ' ' || text[i] == ',') {
            separator = i;
            break;
        }
    }
    if (separator < 0)
        return std::nullopt;
    return std::make_pair(text.left(separator), text.mid(separator + 1));
}

std::optional<int> BitNumber(const QByteArray &text)
{
    const auto bit = Decimal(text, 2);
    if (!bit || *bit >= TesterState::kBitBytes)
        return std::nullopt;
    return bit;
}

std::optional<int> RegisterAddress(const QByteArray &text)
{
    const auto address = HexByte(text, 2);
    if (!address || !TesterState::IsRegister(*address))
        return std::nullopt;
    return address;
}

// "dd.mm.yy;hh:mm" (seconds optional), the form the clock is set in.
std::optional<QDateTime> ParseClockSetting(const QByteArray &text)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(\d\d)\.(\d\d)\.(\d\d);(\d\d):(\d\d)(?::(\d\d))?$)"));
    const auto match = pattern.match(QString::fromLatin1(text.trimmed()));
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&](int group) { return match.captured(group).toInt(); };
    const QDate date(2000 + number(3), number(2), number(1));
    const QTime time(number(4), number(5), match.captured(6).isEmpty() ? 0 : number(6));
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time);
}

} // namespace

TesterModel::TesterModel(link::Clock &clock)
    : m_clock(clock), m_dateBase(QDateTime::currentDateTime()), m_dateSetAt(clock.now())
{
    m_stored = m_working;
    for (int i = 0; i < kPrintTemplates; ++i)
        m_printTemplateTexts[static_cast<size_t>(i)] = SampleTemplateText(i);
}

QByteArray TesterModel::Refusal(const QByteArray &line)
{
    return line + " Protokoll .N\r\n" + kDC1;
}

QByteArray TesterModel::StoreRefusal(const QByteArray &line)
{
    return line + kRefusedSetting + "\r\n" + kDC1;
}

QByteArray TesterModel::Prompt()
{
    return QByteArray("\r\n>") + kDC1;
}

TesterModel::Reply TesterModel::Answer(const QByteArray &line)
{
    Reply reply;
    // CR, EOT CR and BEL CR wake the tester; it shows its prompt.
    if (line.isEmpty() || line == "\x04" || line == "\x07") {
        reply.answer = Prompt();
        return reply;
    }
    m_display.clear();
    const QByteArray lower = line.toLower();
    const RecordCommands records(m_records, m_kymInFront, m_printTemplate, m_printTemplateTexts);
    // The listing and the accessory's stream come without an echo: the PC files them as they arrive.
    if (const auto stream = records.Stream(lower)) {
        reply.answer = *stream;
        return reply;
    }
    const auto payload = lower.startsWith("prx!") ? StoreChange(lower, line)
                         : records.Handles(lower) ? records.Payload(lower)
                                                  : Payload(line, reply);
    reply.answer = payload ? line + *payload + "\r\n" + kDC1 : Refusal(line);
    reply.display = std::exchange(m_display, {});
    return reply;
}

std::optional<QByteArray> TesterModel::StoreChange(const QByteArray &lower, const QByteArray &line)
{
    // A specification's chunks keep the case they were sent in: the name is the user's.
    if (lower.startsWith("prx!add "))
        return m_records.Add(line.mid(8)) ? std::optional<QByteArray>(".Y") : std::nullopt;
    if (lower.startsWith("prx!del")) {
        const auto number = RecordNumber(lower.mid(7));
        if (number && m_records.Remove(*number))
            return ".Y";
    }
    return std::nullopt;
}

void TesterModel::Restart()
{
    m_working = m_stored;
    m_configurationMode = false;
    m_pendingCalibrationEntry = -1;
}

void TesterModel::setPrintTemplateText(int number, const QByteArray &text)
{
    if (number >= 0 && number < kPrintTemplates)
        m_printTemplateTexts[static_cast<size_t>(number)] = text;
}

void TesterModel::StampVersion(int part)
{
    if (part >= 0 && part < kVersionParts)
        m_versionDates[static_cast<size_t>(part)] =
            dateTime().toString(QStringLiteral("dd.MM.yy hh:mm")).toLatin1();
}

void TesterModel::setLanguage(int code)
{
    m_working.languageCode = code;
    m_stored.languageCode = code;
}

void TesterModel::setName(const QByteArray &name)
{
    m_working.name = name;
    m_stored.name = name;
}

void TesterModel::setDateTime(const QDateTime &when)
{
    m_dateBase = when;
    m_dateSetAt = m_clock.now();
}

QDateTime TesterModel::dateTime() const
{
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(m_clock.now() - m_dateSetAt);
    return m_dateBase.addMSecs(elapsed.count());
}

std::optional<QByteArray> TesterModel::Payload(const QByteArray &line, Reply &reply)
{
    // The tester takes mnemonics and keywords in either case ("RST!0", "kal!PGM").
    const QByteArray lower = line.toLower();
    if (lower.size() < 4)
        return std::nullopt;
    if (lower[3] == '?')
        return Query(lower, line);
    if (lower[3] == '!')
        return Setting(lower, line, reply);
    return std::nullopt;
}

std::optional<QByteArray> TesterModel::Query(const QByteArray &lower, const QByteArray &line)
{
    const QByteArray mnemonic = lower.left(4);
    const QByteArray argument = line.mid(4);
    if (lower == "dis?")
        return " " + QByteArray::number(m_working.languageCode).rightJustified(2, '0') + kYes;
    if (lower == "ver?") {
        QByteArray fields;
        for (const QByteArray &date : m_versionDates)
            fields += ';' + date;
        return fields;
    }
    if (lower == "idn?")
        return Identity();
    if (lower == "dat?") {
        // The date stands two characters after "=", the time two characters after ";".
        const QDateTime now = dateTime();
        return "= " + now.date().toString(QStringLiteral("dd.MM.yy")).toLatin1() + "; " +
               now.time().toString(QStringLiteral("hh:mm:ss")).toLatin1();
    }
    if (mnemonic == "var?") {
        const auto address = RegisterAddress(argument);
        if (!address)
            return kNo;
        // Both reading rules find the value: the two characters after "=" and those before ".Y".
        return "=" + HexText(m_working.Register(*address)) + kYes;
    }
    if (mnemonic == "bit?") {
        const auto bit = BitNumber(argument);
        if (!bit)
            return kNo;
        return "=" + HexText(m_working.bits[static_cast<size_t>(*bit)]) + kYes;
    }
    if (mnemonic == "kal?")
        return CalibrationQuery(m_working, argument);
    if (lower.startsWith("wer?bgw"))
        return LimitQuery(m_working, line.mid(7));
    if (lower.startsWith("wer?w") && (lower.size() == 6 || lower[6] == ';')) {
        // The readings of the running test, one letter a quantity: what command scripts collect
        // (a script's comment behind ";" is ignored).
        const auto reading = Reading(lower[5]);
        if (!reading)
            return kNo;
        return " Wertx=" + *reading + kYes;
    }
    if (mnemonic == "str?") {
        const auto number = Decimal(argument, 3);
        if (!number)
            return kNo;
        return "," + m_working.strings.value(*number) + kYes;
    }
    return std::nullopt;
}

std::optional<QByteArray> TesterModel::Setting(const QByteArray &lower, const QByteArray &line, Reply &reply)
{
    const QByteArray mnemonic = lower.left(4);
    const QByteArray argument = line.mid(4);
    if (lower == "idn!99" || lower == "idn!0" || lower == "mes!0")
        return kYes;
    if (!lower.startsWith("wer!"))
        m_pendingCalibrationEntry = -1;
    if (lower == "kal!ein" || lower == "kal!aus") {
        m_configurationMode = lower == "kal!ein";
        return kYes;
    }
    if (lower == "kal!pgm") {
        // Calibration values are only stored from inside a service session.
        if (!m_configurationMode)
            return kRefusedSetting;
        Store();
        return kYes;
    }
    if (lower == "cfg!pgm") {
        Store();
        return kYes;
    }
    if (lower == "rst!0") {
        reply.restartArmed = true;
        return kYes;
    }
    if (lower.size() == 8 && lower.startsWith("kal!upd") && lower[7] >= '0' && lower[7] <= '3') {
        // The loaders take flash contents: only inside a service session.
        if (!m_configurationMode)
            return kRefusedSetting;
        reply.loader = lower[7] - '0';
        return kYes;
    }
    if (lower.startsWith("idn!1,")) {
        const QByteArray name = line.mid(6);
        if (name.size() > TesterState::kMaxNameLength)
            return kRefusedSetting;
        m_working.name = name;
        return kYes;
    }
    if (lower.startsWith("wer!bgw")) {
        m_pendingCalibrationEntry = -1;
        return LimitWrite(m_working, line.mid(7));
    }
    if (mnemonic == "wer!")
        return CalibrationWrite(m_working, argument, m_configurationMode, m_pendingCalibrationEntry);
    if (lower.startsWith("var!d2") && Decimal(argument.mid(2), 2))
        // The high-voltage time is set with its decimal seconds right behind the address.
        return HighVoltageTimeWrite(m_working, argument.mid(2));
    if (mnemonic == "var!") {
        const auto parts = ArgumentAndValue(argument);
        const auto address = parts ? RegisterAddress(parts->first) : std::nullopt;
        const auto value = parts ? HexByte(parts->second) : std::nullopt;
        if (!address || !value)
            return kNo;
        m_working.Register(*address) = static_cast<quint8>(*value);
        return kYes;
    }
    if (mnemonic == "bit!") {
        const auto parts = ArgumentAndValue(argument);
        const auto bit = parts ? BitNumber(parts->first) : std::nullopt;
        const auto value = parts ? HexByte(parts->second) : std::nullopt;
        if (!bit || !value)
            return kNo;
        m_working.bits[static_cast<size_t>(*bit)] = static_cast<quint8>(*value);
        return kYes;
    }
    if (mnemonic == "str!") {
        // The text may hold blanks and commas of its own: only the first comma separates.
        const qsizetype comma = argument.indexOf(',');
        const auto number = comma < 0 ? std::nullopt : Decimal(argument.left(comma), 3);
        if (!number)
            return kNo;
        m_working.strings[*number] = argument.mid(comma + 1);
        return kYes;
    }
    if (const auto remote = RemoteControl(lower))
        return remote;
    if (mnemonic == "dat!") {
        const auto when = ParseClockSetting(argument);
        if (!when)
            return kNo;
        setDateTime(*when);
        return kYes;
    }
    return std::nullopt;
}

std::optional<QByteArray> TesterModel::Reading(char quantity) const
{
    // Readings drift a little with the clock, as a running measurement does.
    const auto tenths =
        std::chrono::duration_cast<std::chrono::milliseconds>(m_clock.now()).count() / 100 % 10;
    switch (quantity) {
    case 'c': return "0." + QByteArray::number(11 + tenths) + " \xEA"; // protective conductor, ohm
    case 'i': return ">19.9 M\xEA";                                    // insulation
    case 'e': return "0." + QByteArray::number(20 + tenths) + " mA";   // equivalent leakage
    case 'b':
        return QByteArray::number(12 + tenths) + " \xE6"
                                                 "A"; // touch current
    default: return std::nullopt;
    }
}

std::optional<QByteArray> TesterModel::RemoteControl(const QByteArray &lower)
{
    // "brk!H n" picks help text n; key 1 ("tas!1") shows a picked text, or closes the one shown;
    // "sst!0" returns to the start screen. "tas!ron" belongs to the print-template dialog.
    if (lower.startsWith("brk!h")) {
        bool ok = false;
        const int number = lower.mid(5).trimmed().toInt(&ok);
        if (!ok || number < 1)
            return kNo;
        m_helpText = number;
        m_helpShown = false;
        return kYes;
    }
    if (lower.startsWith("tas!")) {
        if (lower == "tas!1" && m_helpText > 0) {
            m_helpShown = !m_helpShown;
            if (m_helpShown)
                m_display = HelpTextFrame(m_helpText);
            else
                m_helpText = 0;
        }
        return kYes;
    }
    if (lower == "sst!0") {
        m_helpText = 0;
        m_helpShown = false;
        m_display = StartScreenFrame();
        return kYes;
    }
    return std::nullopt;
}

QByteArray TesterModel::Identity() const
{
    // With the accessory switched on in front of the tester, the accessory answers.
    if (m_kymInFront)
        return ";KYM QRT4027;0815 0042;KYM-BOX;Firmware V 2.10";
    return ";Kalvomer 9000;" + m_serial + ';' + m_working.name + ";Firmware V " + m_firmware;
}

} // namespace kalvo::sim
