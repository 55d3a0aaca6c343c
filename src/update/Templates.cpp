// The tester's five print templates: read out, kept in ".pr" files, stored back through a P-file.
#include "Templates.h"

#include "FileBytes.h"
#include "PFileLoad.h"
#include "link/Errors.h"
#include "link/Link.h"

namespace kalvo::update {

QByteArray TemplateReadCommand(int k)
{
    return "prn?" + QByteArray::number(k);
}

namespace {

QByteArray WithoutTerminator(const QByteArray &answer)
{
    return answer.endsWith(link::kDC1) ? answer.chopped(1) : answer;
}

// Where the success mark that closes an answer ends (line ends may follow it); 0 when there is none.
qsizetype SuccessMarkEnd(const QByteArray &payload)
{
    qsizetype end = payload.size();
    while (end > 0 && (payload[end - 1] == '\r' || payload[end - 1] == '\n'))
        --end;
    return payload.left(end).endsWith(".Y") ? end : 0;
}

} // namespace

QByteArray TemplateText(const QByteArray &answer)
{
    // Without the success mark that closes it.
    QByteArray payload = WithoutTerminator(answer);
    if (const qsizetype end = SuccessMarkEnd(payload))
        payload.truncate(end - 2);
    const qsizetype start = payload.indexOf("\\v");
    if (start >= 0)
        payload.remove(0, start + 2);
    QByteArray text;
    for (char ch : std::as_const(payload)) {
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

std::optional<QByteArray> ReadTemplate(link::Link &link, int k)
{
    if (link.PortClosed())
        return std::nullopt;
    const link::RefusalWatch watch(link);
    const QByteArray command = TemplateReadCommand(k);
    const QByteArray answer = link.Exchange(command);
    if (watch.refused())
        return std::nullopt;
    // A template begins behind its marker, or, where a tester sends none, is closed by the success
    // mark; an answer with neither (garbled, or refused with ".Nx") holds no template.
    if (!answer.contains("\\v") && SuccessMarkEnd(WithoutTerminator(answer)) == 0)
        throw link::FormatError::ForAnswer(
            command, answer, QStringLiteral("eine Vorlage hinter \"\\v\" oder mit \".Y\" am Ende"));
    return TemplateText(answer);
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
