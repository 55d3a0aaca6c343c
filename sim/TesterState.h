// The part of the tester's memory that a store keeps and a restart brings back.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QtGlobal>
#include <array>
#include <utility>

namespace kalvo::sim {

struct TesterState {
    static constexpr int kCalibrationEntries = 51;
    // One calibration entry: its two values as the tester reports them.
    struct Calibration {
        QByteArray first;
        QByteArray second;
        bool operator==(const Calibration &other) const = default;
    };
    static constexpr int kFirstRegister = 0xCF;
    static constexpr int kLastRegister = 0xFF;
    static constexpr int kRegisterCount = kLastRegister - kFirstRegister + 1;
    static constexpr int kBitBytes = 8;
    static constexpr int kMaxNameLength = 8;

    // Device registers CF..FF, index 0 is CF.
    std::array<quint8, kRegisterCount> registers{
        0x14, 0x00, 0x02, 0x10, 0x01, 0x05, 0x00, 0x00, // CF..D6 (D2 = 10 s, D3 = 01: option on)
        0x3C, 0x0A, 0x00, 0x64, 0x01, 0x00, 0x20, 0x08, // D7..DE
        0x00, 0x00, 0x00, 0x00, 0x00, 0x12, 0x00, 0x04, // DF..E6 (E3 = 00: no Quillbank)
        0x00, 0x00, 0xC8, 0x00, 0x01, 0x01, 0x00, 0x00, // E7..EE
        0x32, 0x00, 0x00, 0x0F, 0x00, 0x00, 0x07, 0x00, // EF..F6
        0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x5A, 0x00, // F7..FE
        0x00,                                           // FF
    };
    // Configuration bytes "bit?0".."bit?7".
    std::array<quint8, kBitBytes> bits{0x01, 0x00, 0x03, 0x00, 0x01, 0x00, 0x00, 0x10};
    QByteArray name = "KALVO-01";
    // String registers; 121..125 hold the modem's settings.
    QMap<int, QByteArray> strings{
        {121, "ATX3"}, {122, ""}, {123, ""}, {124, ""}, {125, "AT&FE0V0S0=1"},
    };
    int languageCode = 0;
    // Calibration entries 0..50.
    std::array<Calibration, kCalibrationEntries> calibration = DefaultCalibrationTable();
    // The adjustable limits "kuschl_ea" (mA) and "601_UBEZ" (V); the third, the high-voltage
    // time, is register D2.
    int touchCurrentLimit = 30;
    int protectiveVoltageLimit = 250;

    static constexpr std::pair<int, int> kTouchCurrentRange{15, 95};
    static constexpr std::pair<int, int> kVoltageRange{90, 300};
    static constexpr std::pair<int, int> kHighVoltageTimeRange{1, 60};
    // D2 holds the seconds as two decimal digits (binary-coded decimal), so that its hexadecimal
    // text reads as the decimal seconds: 10 s is the byte 0x10, shown "10".
    static constexpr int kHighVoltageTimeRegister = 0xD2;
    static quint8 ToBcd(int value) { return static_cast<quint8>((value / 10) * 16 + value % 10); }

    static std::array<Calibration, kCalibrationEntries> DefaultCalibrationTable();

    static bool IsRegister(int address) { return address >= kFirstRegister && address <= kLastRegister; }
    quint8 &Register(int address) { return registers[static_cast<size_t>(address - kFirstRegister)]; }
    quint8 Register(int address) const { return registers[static_cast<size_t>(address - kFirstRegister)]; }

    bool operator==(const TesterState &other) const = default;
};

} // namespace kalvo::sim
