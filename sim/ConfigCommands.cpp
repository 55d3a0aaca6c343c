// The tester's calibration table and its three adjustable limits: their defaults and their commands.
#include "ConfigCommands.h"

#include <QRegularExpression>

namespace kalvo::sim {

namespace {

const QByteArray kYes = ".Y";
const QByteArray kNo = ".N";

std::optional<int> WholeNumber(const QByteArray &text)
{
    static const QRegularExpression digits(QStringLiteral("^\\d{1,3}$"));
    if (!digits.match(QString::fromLatin1(text)).hasMatch())
        return std::nullopt;
    return text.toInt();
}

std::optional<int> CalibrationEntry(const QByteArray &text)
{
    // The PC writes the entry number with the blank of its number conversion in front.
    const auto entry = WholeNumber(text.trimmed());
    if (!entry || *entry >= TesterState::kCalibrationEntries)
        return std::nullopt;
    return entry;
}

bool IsCalibrationValue(const QByteArray &text)
{
    static const QRegularExpression number(QStringLiteral("^-?\\d{1,6}(\\.\\d{1,6})?$"));
    return number.match(QString::fromLatin1(text)).hasMatch();
}

bool NameIs(const QByteArray &text, const char *name)
{
    return text.toLower() == QByteArray(name).toLower();
}

} // namespace

std::array<TesterState::Calibration, TesterState::kCalibrationEntries> TesterState::DefaultCalibrationTable()
{
    std::array<TesterState::Calibration, TesterState::kCalibrationEntries> table;
    for (int n = 0; n < TesterState::kCalibrationEntries; ++n) {
        // An offset in converter counts and a gain near 1, different for every range.
        const int offset = (n * 37) % 23 - 11;
        const double gain = 1.0 + ((n * 53) % 41 - 20) / 10000.0;
        table[static_cast<size_t>(n)] = {QByteArray::number(offset), QByteArray::number(gain, 'f', 4)};
    }
    // Entry 29 is the high-voltage divider (zero offset, raw counts), entry 50 the reference.
    table[29] = {"0", "3042.6"};
    table[50] = {"0", "1204"};
    return table;
}

std::optional<QByteArray> CalibrationQuery(const TesterState &state, const QByteArray &argument)
{
    const auto entry = CalibrationEntry(argument);
    if (!entry)
        return std::nullopt;
    const auto &values = state.calibration[static_cast<size_t>(*entry)];
    return ';' + QByteArray::number(*entry) + ':' + values.first + ',' + values.second + kYes;
}

QByteArray CalibrationWrite(TesterState &state, const QByteArray &argument, bool configurationMode,
                            int &pendingEntry)
{
    const qsizetype comma = argument.indexOf(',');
    const auto entry = comma < 0 ? std::nullopt : CalibrationEntry(argument.left(comma));
    const QByteArray value = comma < 0 ? QByteArray() : argument.mid(comma + 1);
    if (!configurationMode || !entry || !IsCalibrationValue(value)) {
        pendingEntry = -1;
        return kNo;
    }
    auto &values = state.calibration[static_cast<size_t>(*entry)];
    if (pendingEntry == *entry) {
        values.second = value;
        pendingEntry = -1;
    } else {
        values.first = value;
        pendingEntry = *entry;
    }
    return kYes;
}

std::optional<QByteArray> LimitQuery(const TesterState &state, const QByteArray &name)
{
    if (NameIs(name, "kuschl_ea"))
        return " BGW <0" + QByteArray::number(state.touchCurrentLimit) + ".0 mA" + kYes;
    if (NameIs(name, "601_UBEZ"))
        return " BGW +" + QByteArray::number(state.protectiveVoltageLimit) + " V" + kYes;
    return std::nullopt;
}

QByteArray LimitWrite(TesterState &state, const QByteArray &nameAndValue)
{
    static const QRegularExpression current(QStringLiteral("^kuschl_ea<0(\\d{1,3})\\.0 mA$"),
                                            QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression voltage(QStringLiteral("^601_UBEZ\\+(\\d{1,3}) V$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QString text = QString::fromLatin1(nameAndValue);
    if (const auto match = current.match(text); match.hasMatch()) {
        const int value = match.captured(1).toInt();
        if (value < TesterState::kTouchCurrentRange.first || value > TesterState::kTouchCurrentRange.second)
            return kNo;
        state.touchCurrentLimit = value;
        return kYes;
    }
    if (const auto match = voltage.match(text); match.hasMatch()) {
        const int value = match.captured(1).toInt();
        if (value < TesterState::kVoltageRange.first || value > TesterState::kVoltageRange.second)
            return kNo;
        state.protectiveVoltageLimit = value;
        return kYes;
    }
    return kNo;
}

QByteArray HighVoltageTimeWrite(TesterState &state, const QByteArray &seconds)
{
    const auto value = WholeNumber(seconds);
    if (!value || *value < TesterState::kHighVoltageTimeRange.first ||
        *value > TesterState::kHighVoltageTimeRange.second)
        return kNo;
    state.Register(TesterState::kHighVoltageTimeRegister) = TesterState::ToBcd(*value);
    return kYes;
}

} // namespace kalvo::sim
