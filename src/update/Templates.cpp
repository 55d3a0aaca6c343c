// The tester's five print templates: read out, kept in ".pr" files, stored back through a P-file.
#include "Templates.h"

#include "FileBytes.h"
#include "PFileLoad.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/TextRules.h"

namespace kalvo::update {

QByteArray TemplateReadCommand(int k)
{
    return "prn?" + QByteArray::number(k);
}

namespace {

// An answer without a template that closes with the tester's "no" instead of a text.
bool ClosedByNo(const QByteArray &answer)
{
    QByteArray payload = answer;
    while (!payload.isEmpty() &&
           (payload.back() == link::kDC1 || payload.back() == '\r' || payload.back() == '\n'))
        payload.chop(1);
    return !answer.contains("\\v") && (payload.endsWith(".N") || payload.endsWith(".Nx"));
}

} // namespace

QByteArray TemplateText(const QByteArray &answer)
{
    const qsizetype start = answer.indexOf("\\v");
    const QByteArray payload = start < 0 ? answer : answer.mid(start + 2);
    QByteArray text;
    for (char ch : payload) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '\n' || c == '\r' || c >= 32)
            text += ch;
    }
    return text;
}

QString TemplateFileName(int k)
{
    return QString::number(k) + QStringLiteral(".pr");
}

std::optional<TemplateTable> ReadTemplates(link::Link &link)
{
    if (link.PortClosed())
        return std::nullopt;
    const link::RefusalWatch watch(link);
    TemplateTable table;
    for (int k = kFirstTemplate; k <= kLastTemplate; ++k) {
        const QByteArray command = TemplateReadCommand(k);
        const link::RefusalWatch read(link);
        const QByteArray answer = link.Exchange(command);
        if (!read.refused() && ClosedByNo(answer)) {
            link.NoteRefusal(command);
            link.prompter().message(
                QStringLiteral("Der Kalvomer hat %1 abgelehnt: \"%2\"")
                    .arg(QString::fromLatin1(command), link::EscapeBytes(answer.left(80))),
                link::Prompter::Icon::Warning);
        }
        table[static_cast<size_t>(k - kFirstTemplate)] = TemplateText(answer);
    }
    if (watch.refused())
        return std::nullopt;
    return table;
}

std::optional<QByteArray> ReadTemplate(link::Link &link, int k)
{
    const std::optional<TemplateTable> table = ReadTemplates(link);
    if (!table)
        return std::nullopt;
    return table->at(static_cast<size_t>(k - kFirstTemplate));
}

bool SaveTemplateFromTester(link::Link &link, int k, const QString &path)
{
    const std::optional<QByteArray> text = ReadTemplate(link, k);
    if (!text)
        return false;
    SaveBytes(path, *text);
    return true;
}

bool StoreTemplate(link::Link &link, link::Prompter &prompter, const QByteArray &text, const QString &path,
                   int slot)
{
    SaveBytes(path, text);
    return BuildAndLoadPFile(link, prompter, path, slot);
}

} // namespace kalvo::update
