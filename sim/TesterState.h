// The part of the tester's memory that a store keeps and a restart brings back.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QtGlobal>
#include <array>

namespace kalvo::sim {

struct TesterState {
    static constexpr int kFirstRegister = 0xCF;
    static constexpr int kLastRegister = 0xFF;
    static constexpr int kRegisterCount = kLastRegister - kFirstRegister + 1;
    static constexpr int kBitBytes = 8;
    static constexpr int kMaxNameLength = 8;

    // Device registers CF..FF, index 0 is CF.
    std::array<quint8, kRegisterCount> registers{
        0x14, 0x00, 0x02, 0x1E, 0x01, 0x05, 0x00, 0x00, // CF..D6 (D3 = 01: the D3 option is on)
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

    static bool IsRegister(int address) { return address >= kFirstRegister && address <= kLastRegister; }
    quint8 &Register(int address) { return registers[static_cast<size_t>(address - kFirstRegister)]; }
    quint8 Register(int address) const { return registers[static_cast<size_t>(address - kFirstRegister)]; }

    bool operator==(const TesterState &other) const = default;
};

} // namespace kalvo::sim
