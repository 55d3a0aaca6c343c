// The regulations' default limits as data: one row per value, with the regulation, the protection
// classes and applied-part types it holds for, and the clause or table it comes from.
#pragma once

#include <span>

namespace kalvo::specdb {

// The editor's regulation list, in its order.
enum class Regulation : int {
    Vde0701T1,
    Vde0701T200,
    Vde0701T240,
    Vde0701T260,
    Vde0702,
    Vde0751,
    En60601,
    En61010,
    En60335,
    En60950,
    BritishStandard,
    Custom,
};
inline constexpr int kRegulationCount = 12;

// The codes a regulation's block writes; nullptr: the block leaves the element as it is.
struct RegulationCodes {
    Regulation regulation;
    const char *element6;
    const char *element17;
    const char *element18; // for every class, unless a ClassCode row names one
};

// Element 18 of one regulation and protection class.
struct ClassCode {
    Regulation regulation;
    const char *protectionClass; // element 14: "05" class I, "06" class II, "07" class III
    const char *element18;
};

// Whether a row's value is the regulation's own or a choice we made where the regulation leaves
// one open or gives a value the box cannot take.
enum class Choice { Regulation, Ours };

// One default limit. Classes, types and switch positions are lists of values separated by blanks:
// classes "05", "06", "07"; applied-part types "00" none, "01" B, "02" BF, "03" CF; switch
// positions as `SwitchCodes()` lists them, nullptr for every one.
struct DefaultLimit {
    Regulation regulation;
    const char *classes;
    const char *types;
    int box;            // GWert 1..22
    const char *text;   // "Ohm" at the end stands for the tester's ohm sign
    const char *source; // the regulation's clause or table, and with Choice::Ours why we chose so
    const char *switches = nullptr;
    Choice choice = Choice::Regulation;
};

// A switch position and what it stands for in the rows, in a few German words.
struct SwitchPosition {
    const char *code;
    const char *meaning;
};

std::span<const SwitchPosition> SwitchPositions();
std::span<const RegulationCodes> RegulationCodeRows();
std::span<const ClassCode> ClassCodeRows();
std::span<const DefaultLimit> DefaultLimitRows();

// The texts box 1..22 may receive (what the tester's measurement behind the box takes), ohm
// signs written as "Ohm"; an empty box is always allowed besides.
std::span<const char *const> AllowedTexts(int box);

} // namespace kalvo::specdb
