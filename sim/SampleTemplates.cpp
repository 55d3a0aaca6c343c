// The five print templates a new tester holds, as template text with field markers.
#include "SampleTemplates.h"

#include "RecordText.h"

#include <array>

namespace kalvo::sim {

namespace {

#define AE "\x84"
#define UE "\x81"

constexpr char kTopLeft = '\xDA';
constexpr char kTopRight = '\xBF';
constexpr char kBottomLeft = '\xC0';
constexpr char kBottomRight = '\xD9';
constexpr char kHorizontal = '\xC4';
constexpr char kVertical = '\xB3';
constexpr char kTeeLeft = '\xC3';
constexpr char kTeeRight = '\xB4';
const QByteArray kLineEnd = "\r\n";

// The measurement pairs of fields 7..54, as the tester labels them on paper.
const std::array<const char *, RecordText::kMeasurements> kMeasurementNames = {
    "R-SL",     "DR-SL", "R-ISO",    "U-ISO", "DI",       "U-AC",  "U-DC",     "EGA",
    "EPA",      "EA",    "EA-SF",    "GA",    "GA-SF",    "PA-AC", "PA-AC-SF", "PA-DC",
    "PA-DC-SF", "PH-AC", "PH-AC-SF", "PH-DC", "PH-DC-SF", "U-HV",  "PSPG",     "Iv",
};
// A short report keeps to protective conductor, insulation and leakage.
constexpr std::array<int, 3> kShortMeasurements = {0, 2, 9};

struct Layout {
    const char *title;
    int width;     // outer width of the frame
    bool framed;   // everything in the frame; else only the title is boxed and the rest a list
    bool brief;    // only the main measurements
    bool medical;  // protection class and applied part in the header, a signature line
    bool workshop; // the accessory's customer and repair lines
};

const std::array<Layout, kPrintTemplates> kLayouts = {{
    {"Universal", 48, false, false, false, false},
    {"Ger" AE "tepr" UE "fung", 60, true, false, false, false},
    {"Kurzprotokoll", 40, true, true, false, false},
    {"Medizinische Ger" AE "te", 66, true, false, true, false},
    {"Werkstattbericht", 66, true, false, false, true},
}};

// "#07" for field 7, "#ER" for a value of its own, padded to `width`: the room the value may fill.
QByteArray Marker(const QByteArray &code, int width = 0)
{
    return ("#" + code).leftJustified(width);
}

QByteArray Marker(int field, int width = 0)
{
    return Marker(QByteArray::number(field).rightJustified(2, '0'), width);
}

QByteArray Rule(int width, char left, char right)
{
    return left + QByteArray(width - 2, kHorizontal) + right + kLineEnd;
}

class Page {
public:
    explicit Page(const Layout &layout) : m_layout(layout) {}

    void Top() { m_text += Rule(m_layout.width, kTopLeft, kTopRight); }
    void Separator()
    {
        m_text += m_layout.framed ? Rule(m_layout.width, kTeeLeft, kTeeRight)
                                  : QByteArray(m_layout.width, kHorizontal) + kLineEnd;
    }
    void Bottom() { m_text += Rule(m_layout.width, kBottomLeft, kBottomRight); }
    void Line(const QByteArray &text)
    {
        if (!m_layout.framed) {
            m_text += text + kLineEnd;
            return;
        }
        const int inner = m_layout.width - 4;
        m_text += kVertical + (" " + text.left(inner).leftJustified(inner) + " ") + kVertical + kLineEnd;
    }
    // A label and its marker, the marker filling the rest of the line.
    void Pair(const QByteArray &label, const QByteArray &marker)
    {
        constexpr int kLabelWidth = 16;
        Line(label.leftJustified(kLabelWidth) + marker);
    }
    QByteArray text() const { return m_text; }

private:
    const Layout &m_layout;
    QByteArray m_text;
};

void Header(Page &page, const Layout &layout)
{
    page.Pair("Ger" AE "t:", Marker(4));
    page.Pair("Ident-Nr.:", Marker(3));
    page.Pair("Datum/Zeit:", Marker(5, 10) + Marker(6));
    page.Pair("Vorschrift:", Marker("VS"));
    if (layout.medical || !layout.framed) {
        page.Pair("Schutzklasse:", Marker("SK"));
        page.Pair("Anwendungsteil:", Marker("AT"));
    }
    page.Pair("Pr" UE "fger" AE "t:", Marker(1));
}

void Measurements(Page &page, const Layout &layout)
{
    // A narrow template narrows the columns so that the limit still fits.
    const int column = layout.width < 50 ? 11 : 14;
    const auto row = [&](int i) {
        const int field = RecordText::kFirstMeasurement + 2 * i;
        const QByteArray name = kMeasurementNames[static_cast<size_t>(i)];
        if (layout.framed)
            page.Line(name.leftJustified(column) + Marker(field, column) + Marker(field + 1));
        else
            page.Line((name + ":").leftJustified(10) + Marker(field, column) + Marker(field + 1));
    };
    if (layout.framed) {
        page.Line(QByteArray("Messung").leftJustified(column) + QByteArray("Messwert").leftJustified(column) +
                  "Grenzwert");
        page.Separator();
    }
    if (layout.brief) {
        for (int i : kShortMeasurements)
            row(i);
        return;
    }
    for (int i = 0; i < RecordText::kMeasurements; ++i)
        row(i);
}

void Workshop(Page &page)
{
    page.Separator();
    page.Pair("Kunde:", Marker(61));
    page.Pair("", Marker(62));
    page.Pair("", Marker(63, 8) + Marker(64));
    page.Pair("Hersteller:", Marker(59, 16) + Marker(58));
    page.Line("Reparatur:");
    for (int field = 65; field <= RecordText::kFieldCount; ++field)
        page.Line("  " + Marker(field));
}

} // namespace

QByteArray SampleTemplateName(int number)
{
    if (number < 0 || number >= kPrintTemplates)
        return {};
    return kLayouts[static_cast<size_t>(number)].title;
}

QByteArray SampleTemplateText(int number)
{
    if (number < 0 || number >= kPrintTemplates)
        return {};
    const Layout &layout = kLayouts[static_cast<size_t>(number)];
    // The title is boxed in every template; "Universal" lists the rest below its box.
    const Layout titleBox{layout.title, layout.width, true, false, false, false};
    Page title(titleBox);
    title.Top();
    title.Line(QByteArray("Pr" UE "fprotokoll  ") + layout.title);
    if (layout.framed)
        title.Separator();
    else
        title.Bottom();
    Page page(layout);
    Header(page, layout);
    page.Separator();
    Measurements(page, layout);
    if (layout.workshop)
        Workshop(page);
    page.Separator();
    page.Line("Ergebnis: " + Marker("ER"));
    if (layout.medical) {
        page.Line({});
        page.Line("Pr" UE "fer: ____________________  Datum: ________");
    }
    if (layout.framed)
        page.Bottom();
    return title.text() + page.text();
}

} // namespace kalvo::sim
