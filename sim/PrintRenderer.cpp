// The tester's five print templates: a record rendered as the framed report the tester prints.
#include "PrintRenderer.h"

#include "RecordText.h"

#include <algorithm>
#include <array>

namespace kalvo::sim {

namespace {

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

struct Layout {
    const char *title;
    int width;            // outer width of the frame
    bool framed;          // everything in the frame; else only the title is boxed and the rest a list
    int measurementLimit; // how many measured values at most (a short report keeps to the main ones)
    bool medical;         // protection class and applied part in the header, a signature line
    bool workshop;        // the accessory's customer and repair lines
};

const std::array<Layout, PrintRenderer::kTemplates> kLayouts = {{
    {"Universal", 48, false, RecordText::kMeasurements, false, false},
    {"Ger"
     "\x84"
     "tepr"
     "\x81"
     "fung",
     60, true, RecordText::kMeasurements, false, false},
    {"Kurzprotokoll", 40, true, 3, false, false},
    {"Medizinische Ger"
     "\x84"
     "te",
     66, true, RecordText::kMeasurements, true, false},
    {"Werkstattbericht", 66, true, RecordText::kMeasurements, false, true},
}};

QByteArray Rule(int width, char left, char right)
{
    return left + QByteArray(width - 2, kHorizontal) + right + kLineEnd;
}

QByteArray Row(int width, const QByteArray &text)
{
    const int inner = width - 4;
    return kVertical + (" " + text.left(inner).leftJustified(inner) + " ") + kVertical + kLineEnd;
}

QByteArray Pair(const QByteArray &label, const QByteArray &value, int labelWidth)
{
    return label.leftJustified(labelWidth) + value;
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
        m_text += m_layout.framed ? Row(m_layout.width, text) : text + kLineEnd;
    }
    QByteArray text() const { return m_text; }

private:
    const Layout &m_layout;
    QByteArray m_text;
};

void Header(Page &page, const Layout &layout, const RecordText &record)
{
    const int labelWidth = 16;
    page.Line(Pair("Ger"
                   "\x84"
                   "t:",
                   record.Field(4), labelWidth));
    page.Line(Pair("Ident-Nr.:", record.Field(3), labelWidth));
    page.Line(Pair("Datum/Zeit:", record.Field(5) + "  " + record.Field(6), labelWidth));
    page.Line(Pair("Vorschrift:", record.RegulationName(), labelWidth));
    if (layout.medical || !layout.framed) {
        page.Line(Pair("Schutzklasse:", QByteArray::number(record.ProtectionClass()), labelWidth));
        const QByteArray part = record.AppliedPart();
        page.Line(Pair("Anwendungsteil:", part.isEmpty() ? QByteArray("-") : "Typ " + part, labelWidth));
    }
    page.Line(Pair("Pr"
                   "\x81"
                   "fger"
                   "\x84"
                   "t:",
                   record.Field(1), labelWidth));
}

void Measurements(Page &page, const Layout &layout, const RecordText &record)
{
    // A narrow template narrows the columns so that the limit still fits.
    const int column = layout.width < 50 ? 11 : 14;
    if (layout.framed)
        page.Line(QByteArray("Messung").leftJustified(column) + QByteArray("Messwert").leftJustified(column) +
                  "Grenzwert");
    if (layout.framed)
        page.Separator();
    int shown = 0;
    for (int i = 0; i < RecordText::kMeasurements && shown < layout.measurementLimit; ++i) {
        const QByteArray value = record.Field(RecordText::kFirstMeasurement + 2 * i);
        const QByteArray limit = record.Field(RecordText::kFirstMeasurement + 2 * i + 1);
        if (value.isEmpty())
            continue;
        ++shown;
        if (layout.framed)
            page.Line(QByteArray(kMeasurementNames[i]).leftJustified(column) + value.leftJustified(column) +
                      limit);
        else
            page.Line(QByteArray(kMeasurementNames[i]) + ": " + value +
                      (limit.isEmpty() ? "" : " (" + limit + ")"));
    }
    if (shown == 0)
        page.Line("keine Messwerte");
}

void Workshop(Page &page, const RecordText &record)
{
    page.Separator();
    if (record.Field(RecordText::kFirstAccessoryField).isEmpty()) {
        page.Line("Keine Kundendaten erfasst");
        return;
    }
    const int labelWidth = 12;
    page.Line(Pair("Kunde:", record.Field(61), labelWidth));
    page.Line(Pair("", record.Field(62), labelWidth));
    page.Line(Pair("", record.Field(63) + " " + record.Field(64), labelWidth));
    page.Line(Pair("Hersteller:", record.Field(59) + " " + record.Field(58), labelWidth));
    page.Line(Pair("Reparatur:", {}, labelWidth));
    for (int field = 65; field <= RecordText::kFieldCount; ++field) {
        if (!record.Field(field).isEmpty())
            page.Line("  " + record.Field(field));
    }
}

} // namespace

QByteArray PrintRenderer::TemplateName(int number)
{
    if (number < 0 || number >= kTemplates)
        return {};
    return kLayouts[static_cast<size_t>(number)].title;
}

QByteArray PrintRenderer::Render(int number, const QByteArray &text)
{
    const Layout &layout = kLayouts[static_cast<size_t>(std::clamp(number, 0, kTemplates - 1))];
    const RecordText record(text);
    Page page(layout);
    // The title is boxed in every template; "Universal" lists the rest below its box.
    const Layout titleBox{layout.title, layout.width, true, 0, false, false};
    Page title(titleBox);
    title.Top();
    title.Line(QByteArray("Pr"
                          "\x81"
                          "fprotokoll  ") +
               layout.title);
    if (!layout.framed)
        title.Bottom();
    QByteArray out = title.text();
    if (layout.framed)
        out += Rule(layout.width, kTeeLeft, kTeeRight);
    Header(page, layout, record);
    page.Separator();
    Measurements(page, layout, record);
    if (layout.workshop)
        Workshop(page, record);
    page.Separator();
    page.Line("Ergebnis: " + record.Verdict());
    if (layout.medical) {
        page.Line({});
        page.Line("Pr"
                  "\x81"
                  "fer: ____________________  Datum: ________");
    }
    if (layout.framed)
        page.Bottom();
    return out + page.text();
}

} // namespace kalvo::sim
