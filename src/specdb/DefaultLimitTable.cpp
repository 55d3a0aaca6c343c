// The regulations' default limits, one row per value, to be read beside the regulations.
//
// Classes: "05" protection class I, "06" class II, "07" class III. Applied parts: "00" none,
// "01" B, "02" BF, "03" CF. Switch positions: see `kSwitchMeanings`. Where a regulation's value
// lies between two texts the box takes, the row takes the one that passes nothing the regulation
// fails (the stricter current or resistance; for the high-voltage test the highest level not above
// the regulation's, since a higher one may damage sound insulation), or the nearest where the box
// has no such text, says so in its source and is marked Ours; so is a row for which the regulation gives no
// value at all. Where a regulation has no value for a box and we choose none, it has no row.
#include "DefaultLimitTable.h"

#include <iterator>
#include <vector>

namespace kalvo::specdb {

namespace {

using enum Regulation;

constexpr const char *I = "05";
constexpr const char *II = "06";
constexpr const char *III = "07";
constexpr const char *I_II = "05 06";
constexpr const char *AnyClass = "05 06 07";
constexpr const char *AnyPart = "00 01 02 03";
constexpr const char *B_BF = "01 02";
constexpr const char *BF = "02";
constexpr const char *CF = "03";
constexpr Choice Ours = Choice::Ours;

// The switch position names the device's category where the medical regulations make exceptions
// for it, or its supply; the codes are the list's, their meaning is ours. "00", "05" and "Menue"
// keep the general values; element 19 carries the code.
constexpr const char *NoEarthedParts = "01"; // also mineral insulation, mobile X-ray with extra PE
constexpr const char *FixedWithPe = "02";
constexpr const char *XrayWithoutPe = "20";
constexpr const char *Mains115V = "05";
constexpr const char *MobileOrNoEarth = "01 20";

constexpr SwitchPosition kSwitchMeanings[] = {
    {"00", "allgemein"},
    {"05", "Netz 115 V (Bezugsspannung bis 150 V)"},
    {"01",
     "ohne geerdete berührbare Teile, mineralische Isolierung, fahrbares Röntgengerät mit Schutzleiter"},
    {"02", "fest angeschlossen mit Schutzleiter"},
    {"20", "fahrbares Röntgengerät ohne zusätzlichen Schutzleiter"},
    {"Menue", "Auswahl am Tester, allgemeine Werte"},
};

// clang-format off
constexpr RegulationCodes kCodes[] = {
    // regulation      element 6  17     18
    {Vde0701T1,        "10",      "1F",  nullptr},
    {Vde0701T200,      "20",      nullptr, nullptr},
    {Vde0701T240,      "30",      "20",  "01"},
    {Vde0701T260,      "40",      "21",  nullptr},
    {Vde0702,          "50",      "22",  nullptr},
    {Vde0751,          "60",      "23",  nullptr},
    {En60601,          "70",      "24",  "03"},
    {En61010,          "90",      "26",  "03"},
    {En60335,          "A0",      "27",  nullptr},
    {En60950,          "B0",      "28",  nullptr},
    {BritishStandard,  "C0",      "29",  nullptr},
    {Custom,           "D0",      "30",  nullptr}, // "80" when the switch position is the menu
};

constexpr ClassCode kClassCodes[] = {
    {Vde0701T1, I,   "02"},
    {Vde0701T1, II,  "01"},
    {Vde0701T1, III, "00"},
    {Vde0702,   II,  "01"},
};

constexpr DefaultLimit kLimits[] = {
    // DIN VDE 0701-1: repair and modification of electrical appliances
    {Vde0701T1, I,        AnyPart, 1,  "<0.300Ohm", "VDE 0701-1, Schutzleiterwiderstand, Leitung bis 5 m"},
    {Vde0701T1, I,        AnyPart, 3,  ">1.000MOhm", "VDE 0701-1, Isolationswiderstand Schutzklasse I"},
    {Vde0701T1, II,       AnyPart, 3,  ">2.000MOhm", "VDE 0701-1, Isolationswiderstand Schutzklasse II"},
    {Vde0701T1, III,      AnyPart, 3,  ">0.500MOhm", "VDE 0701-1, Isolationswiderstand Schutzklasse III (0,25 MOhm; der Tester nimmt 0,5 MOhm)", nullptr, Ours},
    {Vde0701T1, AnyClass, AnyPart, 4,  ">0500V",    "VDE 0701-1, Messspannung der Isolationsmessung 500 V DC"},
    {Vde0701T1, I,        AnyPart, 5,  "<3.500mA",  "VDE 0701-1, Schutzleiterstrom"},
    {Vde0701T1, II,       AnyPart, 5,  "<0.500mA",  "VDE 0701-1, Berührungsstrom Schutzklasse II"},
    {Vde0701T1, III,      AnyPart, 6,  "0120V",     "VDE 0701-1, Schutzkleinspannung"},
    {Vde0701T1, III,      AnyPart, 7,  "0120V",     "VDE 0701-1, Schutzkleinspannung"},
    {Vde0701T1, I,        AnyPart, 8,  "<3.500mA",  "VDE 0701-1, Ersatz-Ableitstrom Schutzklasse I"},
    {Vde0701T1, I_II,     AnyPart, 12, "<0.500mA",  "VDE 0701-1, Berührungsstrom berührbarer leitfähiger Teile"},

    // DIN VDE 0701-200: household appliances after repair
    {Vde0701T200, I,      AnyPart, 1,  "<1.000Ohm", "VDE 0701-200, Schutzleiterwiderstand, größte Leitungslänge"},
    {Vde0701T200, I,      AnyPart, 3,  ">0.500MOhm", "VDE 0701-200, Isolationswiderstand Schutzklasse I"},
    {Vde0701T200, I,      AnyPart, 4,  ">0500V",    "VDE 0701-200, Messspannung 500 V DC"},
    {Vde0701T200, I,      AnyPart, 5,  "<3.500mA",  "VDE 0701-200, Schutzleiterstrom"},
    {Vde0701T200, II,     AnyPart, 3,  ">2.000MOhm", "VDE 0701-200, Isolationswiderstand Schutzklasse II"},
    {Vde0701T200, II,     AnyPart, 4,  ">0500V",    "VDE 0701-200, Messspannung 500 V DC"},
    {Vde0701T200, II,     AnyPart, 5,  "<3.500mA",  "VDE 0701-200, Schutzleiterstrom"},
    {Vde0701T200, II,     AnyPart, 8,  "<1.000mA",  "VDE 0701-200, Ersatz-Ableitstrom Schutzklasse II"},
    {Vde0701T200, III,    AnyPart, 3,  ">2.000MOhm", "VDE 0701-200, Isolationswiderstand Schutzklasse III"},
    {Vde0701T200, III,    AnyPart, 4,  ">0250V",    "VDE 0701-200, Messspannung Schutzklasse III 250 V DC"},
    {Vde0701T200, III,    AnyPart, 6,  "0120V",     "VDE 0701-200, Schutzkleinspannung"},
    {Vde0701T200, III,    AnyPart, 7,  "0120V",     "VDE 0701-200, Schutzkleinspannung"},

    // DIN VDE 0701-240: data processing equipment and office machines
    {Vde0701T240, I,      AnyPart, 1,  "<0.300Ohm", "VDE 0701-240 mit VDE 0701-1, Schutzleiterwiderstand"},
    {Vde0701T240, I,      AnyPart, 3,  ">1.000MOhm", "VDE 0701-240 mit VDE 0701-1, Isolationswiderstand Schutzklasse I"},
    {Vde0701T240, I_II,   AnyPart, 4,  ">0500V",    "VDE 0701-240 mit VDE 0701-1, Messspannung 500 V DC"},
    {Vde0701T240, I,      AnyPart, 5,  "<3.500mA",  "VDE 0701-240, Schutzleiterstrom steckbarer Geräte"},
    {Vde0701T240, II,     AnyPart, 3,  ">2.000MOhm", "VDE 0701-240 mit VDE 0701-1, Isolationswiderstand Schutzklasse II"},
    {Vde0701T240, II,     AnyPart, 12, "<0.250mA",  "VDE 0701-240 mit EN 60950-1 Tab. 5A, Berührungsstrom Schutzklasse II"},
    {Vde0701T240, III,    AnyPart, 4,  ">0250V",    "VDE 0701-240 mit VDE 0701-1, Messspannung Schutzklasse III 250 V DC"},
    {Vde0701T240, III,    AnyPart, 6,  "0120V",     "VDE 0701-240, Schutzkleinspannung"},
    {Vde0701T240, III,    AnyPart, 7,  "0120V",     "VDE 0701-240, Schutzkleinspannung"},

    // DIN VDE 0701-260: hand-held electric tools
    {Vde0701T260, I,      AnyPart, 1,  "<0.300Ohm", "VDE 0701-260, Schutzleiterwiderstand"},
    {Vde0701T260, I,      AnyPart, 3,  ">2.000MOhm", "VDE 0701-260, Isolationswiderstand Schutzklasse I 2 MOhm"},
    {Vde0701T260, I_II,   AnyPart, 4,  ">0500V",    "VDE 0701-260, Messspannung 500 V DC"},
    {Vde0701T260, I,      AnyPart, 5,  "<3.500mA",  "VDE 0701-260, Schutzleiterstrom"},
    {Vde0701T260, II,     AnyPart, 3,  ">7.000MOhm", "VDE 0701-260, Isolationswiderstand Schutzklasse II 7 MOhm"},
    {Vde0701T260, II,     AnyPart, 12, "<0.500mA",  "VDE 0701-260, Berührungsstrom Schutzklasse II"},
    {Vde0701T260, III,    AnyPart, 4,  ">0250V",    "VDE 0701-260, Messspannung Schutzklasse III 250 V DC"},
    {Vde0701T260, III,    AnyPart, 6,  "0120V",     "VDE 0701-260, Schutzkleinspannung"},
    {Vde0701T260, III,    AnyPart, 7,  "0120V",     "VDE 0701-260, Schutzkleinspannung"},

    // DIN VDE 0702: repeat tests of electrical appliances
    {Vde0702, I,          AnyPart, 1,  "<0.300Ohm", "VDE 0702, Schutzleiterwiderstand, Leitung bis 5 m"},
    {Vde0702, III,        AnyPart, 1,  "<0.300Ohm", "VDE 0702, Schutzleiterwiderstand (Gerät mit Schutzleiteranschluss)"},
    {Vde0702, I,          AnyPart, 3,  ">0.500MOhm", "VDE 0702, Isolationswiderstand Schutzklasse I"},
    {Vde0702, II,         AnyPart, 3,  ">2.000MOhm", "VDE 0702, Isolationswiderstand Schutzklasse II"},
    {Vde0702, III,        AnyPart, 3,  ">0.500MOhm", "VDE 0702, Isolationswiderstand Schutzklasse III (0,25 MOhm; der Tester nimmt 0,5 MOhm)", nullptr, Ours},
    {Vde0702, AnyClass,   AnyPart, 4,  ">0500V",    "VDE 0702, Messspannung der Isolationsmessung 500 V DC"},
    {Vde0702, I,          AnyPart, 5,  "<3.500mA",  "VDE 0702, Schutzleiterstrom"},
    {Vde0702, II,         AnyPart, 5,  "<0.500mA",  "VDE 0702, Berührungsstrom Schutzklasse II"},
    {Vde0702, III,        AnyPart, 6,  "0120V",     "VDE 0702, Schutzkleinspannung"},
    {Vde0702, III,        AnyPart, 7,  "0120V",     "VDE 0702, Schutzkleinspannung"},
    {Vde0702, I_II,       AnyPart, 8,  "<1.000mA",  "VDE 0702, Ersatz-Ableitstrom"},

    // DIN VDE 0751-1: repeat tests of medical electrical equipment
    {Vde0751, I,          AnyPart, 1,  "<0.300Ohm", "VDE 0751-1, Schutzleiterwiderstand mit Netzanschlussleitung"},
    {Vde0751, I_II,       AnyPart, 3,  ">2.000MOhm", "VDE 0751-1, Isolationswiderstand"},
    {Vde0751, I_II,       AnyPart, 4,  ">0500V",    "VDE 0751-1, Messspannung 500 V DC"},
    {Vde0751, I,          AnyPart, 5,  "<3.500mA",  "VDE 0751-1, Schutzleiterstrom"},
    {Vde0751, III,        AnyPart, 4,  ">0250V",    "VDE 0751-1, Messspannung Schutzklasse III 250 V DC"},
    {Vde0751, III,        AnyPart, 6,  "0120V",     "VDE 0751-1, Schutzkleinspannung"},
    {Vde0751, III,        AnyPart, 7,  "0120V",     "VDE 0751-1, Schutzkleinspannung"},
    {Vde0751, I,          AnyPart, 12, "<1.000mA",  "VDE 0751-1, Ersatz-Geräteableitstrom Schutzklasse I"},
    {Vde0751, II,         AnyPart, 12, "<0.500mA",  "VDE 0751-1, Ersatz-Geräteableitstrom Schutzklasse II"},
    {Vde0751, AnyClass,   BF,      9,  "<05.00mA",  "VDE 0751-1, Ersatz-Patientenableitstrom Typ BF"},
    {Vde0751, AnyClass,   CF,      9,  "<0.050mA",  "VDE 0751-1, Ersatz-Patientenableitstrom Typ CF"},

    // EN 60601-1: medical electrical equipment, general requirements
    {En60601, I,          AnyPart, 1,  "<0.300Ohm", "EN 60601-1, 18 f) Schutzleiterimpedanz (0,2 Ohm mit Netzleitung; der Tester nimmt 0,3 Ohm)", nullptr, Ours},
    {En60601, I,          AnyPart, 3,  ">2.000MOhm", "EN 60601-1 hat keinen Isolationswiderstand; Wert der Wiederholungsprüfung, VDE 0751-1", nullptr, Ours},
    {En60601, II,         AnyPart, 3,  ">7.000MOhm", "EN 60601-1 hat keinen Isolationswiderstand; doppelte Isolierung wie VDE 0701-260", nullptr, Ours},
    {En60601, I_II,       AnyPart, 4,  ">0500V",    "Messspannung der Isolationsmessung 500 V DC"},
    {En60601, I,          AnyPart, 5,  "<3.500mA",  "VDE 0751-1, Schutzleiterstrom"},
    {En60601, I,          AnyPart, 10, "<0.500mA",  "EN 60601-1, 19.3 Tab. IV, Erdableitstrom, Normalzustand"},
    {En60601, I,          AnyPart, 11, "<1.000mA",  "EN 60601-1, 19.3 Tab. IV, Erdableitstrom, erster Fehler"},
    {En60601, AnyClass,   AnyPart, 12, "<0.100mA",  "EN 60601-1, 19.3 Tab. IV, Gehäuseableitstrom, Normalzustand"},
    {En60601, AnyClass,   AnyPart, 13, "<0.500mA",  "EN 60601-1, 19.3 Tab. IV, Gehäuseableitstrom, erster Fehler"},
    {En60601, I,          AnyPart, 22, ">1.50kV",   "EN 60601-1, 20.3 Tab. V, Basisisolierung 1500 V"},
    {En60601, II,         AnyPart, 22, ">3.50kV",   "EN 60601-1, 20.3 Tab. V, doppelte Isolierung 4000 V; der Tester prüft mit höchstens 3,5 kV", nullptr, Ours},

    // EN 61010-1: electrical equipment for measurement, control and laboratory use
    {En61010, I,          AnyPart, 1,  "<0.300Ohm", "EN 61010-1, 6.5.1 Schutzleiterverbindung (0,1 Ohm; der Tester nimmt 0,3 Ohm)", nullptr, Ours},
    {En61010, I,          AnyPart, 5,  "<3.500mA",  "EN 61010-1, 6.3.2 Strom im ersten Fehlerfall 3,5 mA"},
    {En61010, AnyClass,   AnyPart, 12, "<0.500mA",  "EN 61010-1, 6.3.1 berührbarer Strom im Normalzustand 0,5 mA"},
    {En61010, I,          AnyPart, 22, ">1.50kV",   "EN 61010-1, 6.8 Prüfspannung Basisisolierung"},
    {En61010, II,         AnyPart, 22, ">3.50kV",   "EN 61010-1, 6.8 Prüfspannung verstärkte Isolierung"},

    // EN 60335-1: household appliances
    {En60335, I,          AnyPart, 1,  "<0.300Ohm", "EN 60335-1, 27.5 Schutzleiterwiderstand (0,1 Ohm ohne Leitung; der Tester nimmt 0,3 Ohm)", nullptr, Ours},
    {En60335, I,          AnyPart, 5,  "<3.500mA",  "EN 60335-1, 13.2 Ableitstrom ortsfester Geräte Schutzklasse I"},
    {En60335, II,         AnyPart, 12, "<0.250mA",  "EN 60335-1, 13.2 Ableitstrom Schutzklasse II"},
    {En60335, III,        AnyPart, 12, "<0.500mA",  "EN 60335-1, 13.2 Ableitstrom Schutzklasse III"},

    // EN 60950-1: information technology equipment
    {En60950, I,          AnyPart, 1,  "<0.300Ohm", "EN 60950-1, 2.6.3.4 Schutzleiterwiderstand (0,1 Ohm; der Tester nimmt 0,3 Ohm)", nullptr, Ours},
    {En60950, I,          AnyPart, 5,  "<3.500mA",  "EN 60950-1, 5.1.6 Tab. 5A, Berührungsstrom Schutzklasse I, steckbar Typ A"},
    {En60950, II,         AnyPart, 12, "<0.250mA",  "EN 60950-1, 5.1.6 Tab. 5A, Berührungsstrom Schutzklasse II"},
    {En60950, I,          AnyPart, 22, ">1.50kV",   "EN 60950-1, 5.2.2 Tab. 5B, Basisisolierung 1500 V"},

    // British practice: in-service inspection and testing of electrical equipment
    {BritishStandard, I,  AnyPart, 1,  "<0.300Ohm", "In-service inspection, Schutzleiter 0,1 Ohm zuzüglich Leitung"},
    {BritishStandard, I,  AnyPart, 3,  ">1.000MOhm", "In-service inspection, Isolationswiderstand Schutzklasse I"},
    {BritishStandard, II, AnyPart, 3,  ">2.000MOhm", "In-service inspection, Isolationswiderstand Schutzklasse II"},
    {BritishStandard, I_II, AnyPart, 4, ">0500V",   "In-service inspection, Messspannung 500 V DC"},
    {BritishStandard, I,  AnyPart, 5,  "<3.500mA",  "In-service inspection, Schutzleiterstrom"},
    {BritishStandard, II, AnyPart, 12, "<0.250mA",  "In-service inspection, Berührungsstrom Schutzklasse II"},
};

// What the switch position changes, and the values no regulation gives. Each row follows the
// general row for its box, so it wins for its switch positions.
constexpr DefaultLimit kSwitchLimits[] = {
    // The tester applies mains voltage for the currents of these sequences; a device with less than
    // 0.2 Ohm between L and N is a short circuit and is not switched on.
    {En60601, I_II, AnyPart, 2, ">0.200Ohm", "Kurzschlussprüfung L-N, bevor für die Ableitströme Netzspannung angelegt wird; die Norm nennt keinen Wert", nullptr, Ours},
    {En61010, I_II, AnyPart, 2, ">0.200Ohm", "Kurzschlussprüfung L-N, bevor für die Ableitströme Netzspannung angelegt wird; die Norm nennt keinen Wert", nullptr, Ours},

    {En60601, I,  AnyPart, 10, "<2.500mA", "EN 60601-1, 19.3 Tab. IV Anm. 2 und 4, Erdableitstrom, Normalzustand", MobileOrNoEarth},
    {En60601, I,  AnyPart, 10, "<05.00mA", "EN 60601-1, 19.3 Tab. IV Anm. 3, fest angeschlossen, Erdableitstrom, Normalzustand", FixedWithPe},
    {En60601, I,  AnyPart, 11, "<2.000mA", "EN 60601-1, 19.3 Tab. IV Anm. 2 und 4, Erdableitstrom, erster Fehler 5 mA; Kasten 11 nimmt 5 mA nicht, der nächste strengere Wert ist 2 mA", MobileOrNoEarth, Ours},
    {En60601, I,  AnyPart, 11, "<10.00mA", "EN 60601-1, 19.3 Tab. IV Anm. 3, fest angeschlossen, Erdableitstrom, erster Fehler", FixedWithPe},
    {En60601, I,  AnyPart, 22, ">1.00kV",  "EN 60601-1, 20.3 Tab. V, Basisisolierung, Bezugsspannung bis 150 V: 1000 V", Mains115V},
    {En60601, II, AnyPart, 22, ">1.50kV",  "EN 60601-1, 20.3 Tab. V, doppelte Isolierung, Bezugsspannung bis 150 V: 3000 V; der Tester nimmt 1,5 oder 3,5 kV", Mains115V, Ours},

    {Vde0751, I,  AnyPart, 12, "<2.000mA", "VDE 0751-1 Tab. F.1, Ersatz-Geräteableitstrom, Anm. 1, mineralische Isolierung, fahrbare Röntgengeräte mit zusätzlichem Schutzleiter: 5 mA; Kasten 12 nimmt 5 mA nicht, der nächste strengere Wert ist 2 mA", NoEarthedParts, Ours},
    {Vde0751, I,  AnyPart, 12, "<10.00mA", "VDE 0751-1 Tab. F.1, Ersatz-Geräteableitstrom, fest angeschlossen (Anm. 2)", FixedWithPe},
    {Vde0751, I,  AnyPart, 12, "<2.000mA", "VDE 0751-1 Tab. F.1, Ersatz-Geräteableitstrom, fahrbare Röntgengeräte ohne zusätzlichen Schutzleiter", XrayWithoutPe},

    {En60950, I,  AnyPart, 22, ">1.00kV",  "EN 60950-1, 5.2.2 Tab. 5B, Basisisolierung bis 184 V Scheitelwert: 1000 V", Mains115V},

    {En61010, AnyClass, AnyPart, 13, "<1.000mA", "EN 61010-1, 6.3.2 berührbarer Strom im ersten Fehlerfall 3,5 mA; Kasten 13 nimmt höchstens 1 mA", nullptr, Ours},
};

// The patient currents of the medical and laboratory regulations by applied-part type: B and BF
// ("a"), CF ("c"); without an applied part nothing ("b").
constexpr DefaultLimit kPatientLimits[] = {
    {En60601, AnyClass, B_BF, 14, "<0.100mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom AC, Normalzustand, B/BF"},
    {En60601, AnyClass, B_BF, 15, "<0.500mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom AC, erster Fehler, B/BF"},
    {En60601, AnyClass, B_BF, 16, "<0.010mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom DC, Normalzustand"},
    {En60601, AnyClass, B_BF, 17, "<0.050mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom DC, erster Fehler"},
    {En60601, AnyClass, B_BF, 18, "<0.100mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom AC, Normalzustand, B/BF"},
    {En60601, AnyClass, B_BF, 19, "<0.500mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom AC, erster Fehler, B/BF"},
    {En60601, AnyClass, B_BF, 20, "<0.010mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom DC, Normalzustand"},
    {En60601, AnyClass, B_BF, 21, "<0.050mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom DC, erster Fehler"},
    {En60601, AnyClass, BF,   9,  "<05.00mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom bei Netzspannung am Anwendungsteil, BF"},
    {En60601, AnyClass, CF,   3,  ">70.00MOhm", "Isolierung des Anwendungsteils Typ CF; die Norm nennt keinen Isolationswiderstand", nullptr, Ours},
    {En60601, AnyClass, CF,   9,  "<0.050mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom bei Netzspannung am Anwendungsteil, CF"},
    {En60601, AnyClass, CF,   14, "<0.010mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom AC, Normalzustand, CF"},
    {En60601, AnyClass, CF,   15, "<0.050mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom AC, erster Fehler, CF"},
    {En60601, AnyClass, CF,   16, "<0.010mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom DC, Normalzustand"},
    {En60601, AnyClass, CF,   17, "<0.050mA", "EN 60601-1, 19.3 Tab. IV, Patientenableitstrom DC, erster Fehler"},
    {En60601, AnyClass, CF,   18, "<0.010mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom AC, Normalzustand, CF"},
    {En60601, AnyClass, CF,   19, "<0.050mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom AC, erster Fehler, CF"},
    {En60601, AnyClass, CF,   20, "<0.010mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom DC, Normalzustand"},
    {En60601, AnyClass, CF,   21, "<0.050mA", "EN 60601-1, 19.3 Tab. IV, Patientenhilfsstrom DC, erster Fehler"},
};
// clang-format on

// Only those texts that the tester's measurement behind each box takes.
constexpr const char *kBox1[] = {"<0.300Ohm", "<1.000Ohm"};
constexpr const char *kBox2[] = {">0.200Ohm"};
constexpr const char *kBox3[] = {">0.500MOhm", ">1.000MOhm", ">2.000MOhm", ">7.000MOhm", ">70.00MOhm"};
constexpr const char *kBox4[] = {">0250V", ">0500V"};
constexpr const char *kBox5[] = {"<0.500mA", "<3.500mA"};
constexpr const char *kBox6[] = {"0120V"};
constexpr const char *kBox8[] = {"<1.000mA", "<3.500mA"};
constexpr const char *kBox9[] = {"<0.050mA", "<05.00mA"};
constexpr const char *kBox10[] = {"<0.500mA", "<2.500mA", "<05.00mA"};
// Boxes 11 and 12 also take the two texts that only the medical regulations' device categories need.
constexpr const char *kBox11[] = {"<1.000mA", "<2.000mA", "<10.00mA"};
constexpr const char *kBox12[] = {"<0.100mA", "<0.250mA", "<0.500mA", "<1.000mA", "<2.000mA", "<10.00mA"};
constexpr const char *kBox13[] = {"<0.500mA", "<1.000mA"};
constexpr const char *kBox14[] = {"<0.010mA", "<0.100mA"};
constexpr const char *kBox15[] = {"<0.050mA", "<0.500mA"};
constexpr const char *kBox16[] = {"<0.010mA"};
constexpr const char *kBox17[] = {"<0.050mA"};
constexpr const char *kBox22[] = {">1.00kV", ">1.50kV", ">3.50kV"};

} // namespace

std::span<const SwitchPosition> SwitchPositions()
{
    return kSwitchMeanings;
}

std::span<const RegulationCodes> RegulationCodeRows()
{
    return kCodes;
}

std::span<const ClassCode> ClassCodeRows()
{
    return kClassCodes;
}

std::span<const DefaultLimit> DefaultLimitRows()
{
    // One table for a reader; the switch positions' rows and the patient currents follow the rest
    // so that they win where both name a box (box 3 of an applied part of type CF).
    // The tester's EN 61010 sequence measures the patient currents as the EN 60601 one does, with
    // the same limits.
    static const auto rows = [] {
        std::vector<DefaultLimit> all(std::begin(kLimits), std::end(kLimits));
        all.insert(all.end(), std::begin(kSwitchLimits), std::end(kSwitchLimits));
        for (const Regulation regulation : {En60601, En61010}) {
            for (DefaultLimit row : kPatientLimits) {
                row.regulation = regulation;
                all.push_back(row);
            }
        }
        return all;
    }();
    return rows;
}

std::span<const char *const> AllowedTexts(int box)
{
    switch (box) {
    case 1: return kBox1;
    case 2: return kBox2;
    case 3: return kBox3;
    case 4: return kBox4;
    case 5: return kBox5;
    case 6:
    case 7: return kBox6;
    case 8: return kBox8;
    case 9: return kBox9;
    case 10: return kBox10;
    case 11: return kBox11;
    case 12: return kBox12;
    case 13: return kBox13;
    case 14:
    case 18: return kBox14;
    case 15:
    case 19: return kBox15;
    case 16:
    case 20: return kBox16;
    case 17:
    case 21: return kBox17;
    case 22: return kBox22;
    default: return {};
    }
}

} // namespace kalvo::specdb
