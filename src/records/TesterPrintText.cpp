// Fetching and cleaning the print text the tester renders with its templates.
#include "TesterPrintText.h"

#include "link/Link.h"
#include "link/TextRules.h"

#include <array>

namespace kalvo::records {

namespace {

constexpr char kFormFeed = '\x0c';
constexpr unsigned char kKeptControl = 20;

// The display text of every tester code, looked up once: a print text runs to a few thousand
// characters a page, and the conversion of a single code is costly.
const std::array<QString, 256> &DisplayTable()
{
    static const std::array<QString, 256> table = [] {
        std::array<QString, 256> t;
        for (int c = 0; c < 256; ++c)
            t[c] = link::ConvertDisplayChar(static_cast<unsigned char>(c));
        return t;
    }();
    return table;
}

bool TemplateInRange(int templateNumber)
{
    return templateNumber >= kLowestTemplate && templateNumber <= kHighestTemplate;
}

} // namespace

QString ExtractPrintText(const QByteArray &answer)
{
    // The echo of the command stands in front of ENQ, the line end and DC1 behind FF.
    const qsizetype start = answer.indexOf(link::kENQ) + 1;
    qsizetype end = answer.indexOf(kFormFeed, start);
    if (end < 0)
        end = answer.size();
    const std::array<QString, 256> &display = DisplayTable();
    QString text;
    text.reserve(end - start);
    for (qsizetype i = start; i < end; ++i) {
        const auto c = static_cast<unsigned char>(answer[i]);
        // Line ends and code 20 stay as they are; the other control codes (ESC among them, which
        // opens a printer control sequence) mean nothing on the screen and go.
        if (c == '\r' || c == '\n' || c == kKeptControl)
            text += QChar(c);
        else if (c >= 32 && c <= 254)
            text += display[c];
    }
    return text;
}

QString ShowTesterPrintText(link::Link &link, const QByteArray &command)
{
    return ExtractPrintText(link.Exchange(command));
}

QString RenderStoredRecord(link::Link &link, int templateNumber, int record)
{
    if (!TemplateInRange(templateNumber))
        return {};
    link.Exchange("tas!ron");
    const QString text = ShowTesterPrintText(link, "prn!" + QByteArray::number(templateNumber) + ',' +
                                                       QByteArray::number(record));
    link.Exchange("rst!0");
    return text;
}

QString RenderCurrentRecord(link::Link &link, int templateNumber)
{
    if (!TemplateInRange(templateNumber))
        return {};
    return ShowTesterPrintText(link, "prn!" + QByteArray::number(templateNumber));
}

} // namespace kalvo::records
