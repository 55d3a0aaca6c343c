// A test specification as the editor holds it, before it is cut into the chunks that go to the tester.
#pragma once

#include <QByteArray>

#include <array>

namespace kalvo::specdb {

inline constexpr int kCodeCount = 26; // code elements 0..25; only 0..19 travel in the record
inline constexpr int kSentCodes = 20;
inline constexpr int kLimitSlots = 27; // slots 1..22 are the limit boxes GWert 1..22
inline constexpr int kLimitBoxes = 22;

// The texts of limit boxes 1..22 (slot 0 and those behind 22 unused).
using BoxTexts = std::array<QByteArray, kLimitSlots>;

// Texts are in the tester's bytes: byte 234 is its ohm sign. Each code element is two upper-case
// hexadecimal characters; an empty limit switches its measurement off.
struct SpecRecord {
    std::array<QByteArray, kCodeCount> codes;
    BoxTexts limits;
    std::array<QByteArray, kLimitSlots> extras;
};

} // namespace kalvo::specdb
