// The records a new virtual tester holds: test records, test specifications and the accessory's records.
#include "SampleRecords.h"

#include "RecordText.h"

#include <vector>

namespace kalvo::sim {

namespace {

// Tester text is 8-bit in the tester's code page; a hex escape swallows every hex digit behind it,
// so each special byte closes its literal.
#define AE "\x84"
#define OE "\x94"
#define UE "\x81"
#define SZ "\xE1"
#define OHM "\xEA"
#define MICRO "\xE6"

// The measurement pairs, in the order of fields 7..54.
enum Pair {
    RSl,
    DrSl,
    RIso,
    UIso,
    Di,
    UAc,
    UDc,
    Ega,
    Epa,
    Ea,
    EaSf,
    Ga,
    GaSf,
    PaAc,
    PaAcSf,
    PaDc,
    PaDcSf,
    PhAc,
    PhAcSf,
    PhDc,
    PhDcSf,
    UHv,
    Pspg,
    Iv
};

struct Measure {
    Pair pair;
    const char *value;
    const char *limit;
};

enum AppliedPart { NoPart = 0, TypeB = 1, TypeBF = 2, TypeCF = 3 };

struct Sample {
    const char *id;
    const char *type;
    const char *date;
    const char *time;
    int result; // 0..6 passed, 7..F failed
    int regulation;
    int protectionClass;
    AppliedPart part;
    std::vector<Measure> measures;
    std::vector<const char *> accessory = {}; // fields 55.. in order
};

// Field 2: 36 characters. Only positions 7, 13, 29-30 and 31-32 are read by the PC; the others carry
// the steps the tester ran, here derived from the measurements so that they differ like real ones.
QByteArray CodeString(const Sample &s, int serial)
{
    QByteArray code = "A1" + QByteArray::number(serial, 16).toUpper().rightJustified(4, '0');
    code += QByteArray::number(s.result, 16).toUpper();
    code += "01100";
    code += QByteArray::number(s.regulation, 16).toUpper();
    quint32 steps = 0;
    for (const Measure &m : s.measures)
        steps |= 1u << m.pair;
    code += QByteArray::number(steps, 16).toUpper().rightJustified(8, '0');
    code += "0000000";
    code += QByteArray::number(s.protectionClass + 4).rightJustified(2, '0');
    code += QByteArray::number(s.part).rightJustified(2, '0');
    code += "0000";
    return code;
}

QByteArray Build(const Sample &s, int serial)
{
    QList<QByteArray> fields(RecordText::kFieldCount);
    fields[0] = "KALVO-01";
    fields[1] = CodeString(s, serial);
    fields[2] = s.id;
    fields[3] = s.type;
    fields[4] = s.date;
    fields[5] = s.time;
    for (const Measure &m : s.measures) {
        fields[RecordText::kFirstMeasurement - 1 + 2 * m.pair] = m.value;
        fields[RecordText::kFirstMeasurement + 2 * m.pair] = m.limit;
    }
    for (size_t i = 0; i < s.accessory.size(); ++i)
        fields[RecordText::kFirstAccessoryField - 1 + static_cast<int>(i)] = s.accessory[i];
    return RecordText::Compose('P', fields);
}

QList<QByteArray> BuildAll(const std::vector<Sample> &samples, int firstSerial)
{
    QList<QByteArray> records;
    for (size_t i = 0; i < samples.size(); ++i)
        records << Build(samples[i], firstSerial + static_cast<int>(i));
    return records;
}

} // namespace

QList<QByteArray> SampleTestRecords()
{
    const std::vector<Sample> samples = {
        {"E-0815",
         "Schlagbohrmaschine SB 650",
         "12.01.09",
         "08:14",
         0,
         1,
         2,
         NoPart,
         {{RIso, ">19.9M" OHM, ">2.000M" OHM},
          {UIso, "512V", ">0500V"},
          {Ega, "0.04mA", "<0.500mA"},
          {Iv, "2.71A", ""}}},
        {"K-0042",
         "Wasserkocher K" UE "che",
         "12.01.09",
         "08:31",
         0,
         5,
         1,
         NoPart,
         {{RSl, "0.08" OHM, "<0.300" OHM},
          {RIso, ">19.9M" OHM, ">1.000M" OHM},
          {UIso, "508V", ">0500V"},
          {Ega, "0.24mA", "<3.500mA"},
          {Iv, "8.70A", ""}}},
        {"IT-1107",
         "PC-Monitor 22 Zoll",
         "13.01.09",
         "10:05",
         1,
         3,
         1,
         NoPart,
         {{RSl, "0.11" OHM, "<0.300" OHM},
          {RIso, "48.3M" OHM, ">1.000M" OHM},
          {UIso, "504V", ">0500V"},
          {Ega, "0.31mA", "<3.500mA"},
          {Ga, "0.02mA", "<0.250mA"},
          {Iv, "0.21A", ""}}},
        {"V-0025",
         "Verl" AE "ngerungsleitung 25m",
         "13.01.09",
         "10:22",
         0xA,
         5,
         1,
         NoPart,
         {{RSl, "0.42" OHM, "<0.300" OHM},
          {DrSl, "0.05" OHM, "<0.100" OHM},
          {RIso, ">19.9M" OHM, ">1.000M" OHM},
          {UIso, "507V", ">0500V"}},
         {"13.01.09",
          "10:25",
          "Verl" AE "ngerung",
          "H07RN-F 3G1,5",
          "Kabelwerk Nord",
          "V-0025",
          "Hausmeisterei Sch" OE "ller",
          "Gartenstra" SZ "e 4",
          "79100",
          "Freiburg",
          "Schutzleiter am Stecker lose",
          "Leitung ausgesondert",
          "",
          "",
          "",
          "",
          "",
          "",
          "",
          ""}},
        {"MT-3301",
         "Infusionspumpe IP 12",
         "20.01.09",
         "14:40",
         0,
         6,
         1,
         TypeCF,
         {{RSl, "0.09" OHM, "<0.300" OHM},
          {RIso, ">19.9M" OHM, ">2.000M" OHM},
          {Ega, "112" MICRO "A", "<1000" MICRO "A"},
          {Epa, "4" MICRO "A", "<0050" MICRO "A"},
          {PaAc, "2" MICRO "A", "<0010" MICRO "A"},
          {PaAcSf, "9" MICRO "A", "<0050" MICRO "A"},
          {Iv, "0.08A", ""}}},
        {"MT-3315",
         "EKG-Ger" AE "t Kardio 3",
         "20.01.09",
         "15:02",
         2,
         6,
         1,
         TypeCF,
         {{RSl, "0.12" OHM, "<0.300" OHM},
          {RIso, ">19.9M" OHM, ">2.000M" OHM},
          {Ega, "85" MICRO "A", "<0500" MICRO "A"},
          {PaAc, "3" MICRO "A", "<0010" MICRO "A"},
          {PaAcSf, "11" MICRO "A", "<0050" MICRO "A"},
          {PaDc, "1" MICRO "A", "<0010" MICRO "A"},
          {PhAc, "2" MICRO "A", "<0010" MICRO "A"}},
         {"20.01.09",
          "15:10",
          "EKG",
          "Kardio 3",
          "Kardiomed",
          "SN 44-0917",
          "Praxis Dr. M" UE "ller",
          "Bahnhofstra" SZ "e 12",
          "79098",
          "Freiburg",
          "Elektrodenkabel erneuert",
          "Akku gepr" UE "ft",
          "",
          "",
          "",
          "",
          "",
          "",
          "",
          ""}},
        {"MT-2210",
         "Blutdruckmessger" AE "t BD 5",
         "21.01.09",
         "09:12",
         8,
         6,
         2,
         TypeBF,
         {{RIso, "6.50M" OHM, ">7.000M" OHM},
          {Epa, "180" MICRO "A", "<0100" MICRO "A"},
          {PaAc, "140" MICRO "A", "<0100" MICRO "A"},
          {Ga, "0.03mA", "<0.100mA"}}},
        {"K-0051",
         "Toaster 2 Scheiben",
         "22.01.09",
         "11:48",
         0,
         8,
         1,
         NoPart,
         {{RSl, "0.06" OHM, "<0.300" OHM},
          {RIso, ">19.9M" OHM, ">1.000M" OHM},
          {UIso, "511V", ">0500V"},
          {Ea, "0.18mA", "<0.750mA"},
          {UHv, "1.25kV", ">1.25kV"},
          {Iv, "3.90A", ""}}},
        {"B-0007",
         "Haartrockner F" OE "hn Bad",
         "22.01.09",
         "12:03",
         0,
         1,
         2,
         NoPart,
         {{RIso, ">19.9M" OHM, ">2.000M" OHM},
          {UIso, "509V", ">0500V"},
          {Ga, "0.01mA", "<0.500mA"},
          {Iv, "7.40A", ""}}},
        {"L-0300",
         "Ladeger" AE "t 12V SELV",
         "23.01.09",
         "07:55",
         0,
         5,
         3,
         NoPart,
         {{RIso, ">19.9M" OHM, ">0.250M" OHM}, {UIso, "252V", ">0250V"}, {UDc, "13.6V", "<0042V"}}},
        {"E-0816",
         "Winkelschleifer 125mm",
         "26.01.09",
         "13:20",
         0xB,
         4,
         2,
         NoPart,
         {{RIso, "0.85M" OHM, ">2.000M" OHM},
          {UIso, "503V", ">0500V"},
          {Ga, "0.09mA", "<0.500mA"},
          {Iv, "4.10A", ""}}},
        {"K-0060",
         "K" UE "hlschrank B" UE "ro",
         "27.01.09",
         "16:45",
         9,
         8,
         1,
         NoPart,
         {{RSl, "0.15" OHM, "<0.300" OHM},
          {RIso, "12.4M" OHM, ">1.000M" OHM},
          {UIso, "506V", ">0500V"},
          {Ega, "3.92mA", "<3.500mA"},
          {Iv, "0.62A", ""}}},
        {"MT-4020",
         "Ultraschall-Therapieger" AE "t",
         "02.02.09",
         "09:30",
         1,
         6,
         1,
         TypeBF,
         {{RSl, "0.10" OHM, "<0.200" OHM},
          {RIso, ">19.9M" OHM, ">2.000M" OHM},
          {Ega, "210" MICRO "A", "<1000" MICRO "A"},
          {Epa, "22" MICRO "A", "<5000" MICRO "A"},
          {PaAc, "14" MICRO "A", "<0100" MICRO "A"},
          {PaAcSf, "38" MICRO "A", "<0500" MICRO "A"},
          {UHv, "1.50kV", ">1.50kV"}},
         {"02.02.09",
          "09:41",
          "Therapieger" AE "t",
          "Sonotherm 2",
          "Vitatec",
          "ST2-00871",
          "Physiotherapie " OE "zt" UE "rk",
          "Kirchplatz 1",
          "79102",
          "Freiburg",
          "Schallkopf gereinigt",
          "Netzkabel gepr" UE "ft",
          "Sicherung T2A getauscht",
          "",
          "",
          "",
          "",
          "",
          "",
          ""}},
        {"MT-1102",
         "Absaugpumpe AP 2",
         "03.02.09",
         "10:15",
         0,
         6,
         2,
         TypeB,
         {{RIso, ">19.9M" OHM, ">7.000M" OHM},
          {Epa, "6" MICRO "A", "<0100" MICRO "A"},
          {Ga, "0.02mA", "<0.100mA"},
          {Iv, "0.35A", ""}}},
    };
    return BuildAll(samples, 0x0101);
}

QList<Specification> SampleSpecifications()
{
    // Power tools of protection class II to VDE 0701 part 1, and medical devices of class I with
    // applied parts of type CF to VDE 0751.
    Specification tools{
        "01 Elektrowerkzeuge SK II", "00000000000010002000000000000600001F0100", "05.01.09", "16:20:0", {}};
    Specification medical{"02 Medizin SK I Typ CF",
                          "00010000000060002000000000000503022302"
                          "00",
                          "05.01.09",
                          "16:32:5",
                          {}};
    for (int item = 1; item <= Specification::kItems; ++item) {
        tools.items << QByteArray() << QByteArray();
        medical.items << QByteArray() << QByteArray();
    }
    tools.items[2 * 3 - 1] = ">2.000M" OHM;
    tools.items[2 * 4 - 1] = ">0500V";
    tools.items[2 * 5 - 1] = "<0.500mA";
    tools.items[2 * 12 - 1] = "<0.500mA";
    medical.items[2 * 1 - 1] = "<0.300" OHM;
    medical.items[2 * 3 - 1] = ">2.000M" OHM;
    medical.items[2 * 4 - 1] = ">0500V";
    medical.items[2 * 5 - 1] = "<3.500mA";
    medical.items[2 * 12 - 1] = "<1.000mA";
    medical.items[2 * 14 - 1] = "<0.010mA";
    medical.items[2 * 22 - 1] = ">1.50kV";
    return {tools, medical};
}

QList<QByteArray> SampleAccessoryRecords()
{
    const std::vector<Sample> samples = {
        {"W-1201",
         "Kaffeemaschine KM 10",
         "09.02.09",
         "08:40",
         0,
         5,
         1,
         NoPart,
         {{RSl, "0.07" OHM, "<0.300" OHM}, {RIso, ">19.9M" OHM, ">1.000M" OHM}, {Ega, "0.41mA", "<3.500mA"}},
         {"09.02.09",
          "08:44",
          "Kaffeemaschine",
          "KM 10",
          "Thermolux",
          "TL-88213",
          "B" AE "ckerei Huber",
          "Marktstra" SZ "e 7",
          "79098",
          "Freiburg",
          "Entkalkt",
          "Dichtung Wassertank erneuert",
          "",
          "",
          "",
          "",
          "",
          "",
          "",
          ""}},
        {"W-1202",
         "Staubsauger SX 2000",
         "09.02.09",
         "09:05",
         0,
         1,
         2,
         NoPart,
         {{RIso, ">19.9M" OHM, ">2.000M" OHM}, {Ga, "0.02mA", "<0.500mA"}, {Iv, "6.10A", ""}},
         {"09.02.09",
          "09:07",
          "Staubsauger",
          "SX 2000",
          "Norwerk",
          "NW-5521",
          "Hotel Sonnenh" OE "he",
          "Schlo" SZ "bergweg 3",
          "79104",
          "Freiburg",
          "Motorkohlen gewechselt",
          "Kabeltrommel gereinigt",
          "Probelauf 10 min ohne Befund",
          "",
          "",
          "",
          "",
          "",
          "",
          ""}},
        {"W-1203",
         "Heizl" UE "fter HL 20",
         "10.02.09",
         "11:30",
         0xA,
         5,
         1,
         NoPart,
         {{RSl, "0.61" OHM, "<0.300" OHM}, {RIso, "0.40M" OHM, ">1.000M" OHM}, {Ega, "4.80mA", "<3.500mA"}},
         {"10.02.09",
          "11:36",
          "Heizl" UE "fter",
          "HL 20",
          "Thermolux",
          "TL-30117",
          "Kindergarten Regenbogen",
          "Wiesenweg 22",
          "79111",
          "Freiburg",
          "Heizwendel gebrochen",
          "Isolation feucht",
          "Ger" AE "t nicht instand zu setzen",
          "Dem Kunden zur" UE "ckgegeben",
          "",
          "",
          "",
          "",
          "",
          ""}},
        {"W-1204",
         "B" UE "geleisen DB 3",
         "10.02.09",
         "12:02",
         0,
         8,
         1,
         NoPart,
         {{RSl, "0.09" OHM, "<0.300" OHM}, {RIso, ">19.9M" OHM, ">1.000M" OHM}, {Ea, "0.12mA", "<0.750mA"}},
         {"10.02.09",
          "12:05",
          "B" UE "geleisen",
          "DB 3",
          "Vapora",
          "VP-0398",
          "W" AE "scherei Wei" SZ,
          "M" UE "hlenstra" SZ "e 15",
          "79115",
          "Freiburg",
          "Netzleitung mit Knickschutz erneuert",
          "",
          "",
          "",
          "",
          "",
          "",
          "",
          "",
          ""}},
        {"MT-5003",
         "Pulsoximeter PX 1",
         "11.02.09",
         "14:18",
         0,
         6,
         2,
         TypeBF,
         {{RIso, ">19.9M" OHM, ">7.000M" OHM},
          {Epa, "3" MICRO "A", "<0100" MICRO "A"},
          {PaAc, "2" MICRO "A", "<0100" MICRO "A"}},
         {"11.02.09",
          "14:25",
          "Pulsoximeter",
          "PX 1",
          "Medisys",
          "PX1-20931",
          "Pflegeheim St. Anna",
          "Klosterweg 9",
          "79117",
          "Freiburg",
          "Sensor ersetzt",
          "Funktionspr" UE "fung bestanden",
          "",
          "",
          "",
          "",
          "",
          "",
          "",
          ""}},
    };
    return BuildAll(samples, 0x0201);
}

} // namespace kalvo::sim
