// Set files: test specifications kept on the PC, three lines a record, and the commands that store them.
#include "SetFile.h"

#include "link/Errors.h"
#include "link/Prompter.h"

#include <QDir>
#include <QFile>

namespace kalvo::specdb {

QList<QByteArray> SetLines(const QByteArray &text)
{
    QList<QByteArray> lines;
    QByteArray line;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c != '\r' && c != '\n') {
            line += c;
            continue;
        }
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            ++i;
        lines << line;
        line.clear();
    }
    if (!line.isEmpty())
        lines << line;
    return lines;
}

namespace {

// The record of lines `first`..`first` + 2; a control character would go to the tester inside
// "prx!add " and shift or end what it stores.
SetGroup Group(const QList<QByteArray> &lines, qsizetype first, const QString &where)
{
    for (qsizetype i = first; i < first + 3; ++i) {
        for (const char c : lines[i]) {
            const auto code = static_cast<unsigned char>(c);
            if (code < 32 || code == 0x7F)
                throw link::FormatError(
                    where, static_cast<int>(i + 1),
                    QStringLiteral("keine Steuerzeichen (hier das Zeichen %1)").arg(code));
        }
    }
    return {lines[first], lines[first + 1], lines[first + 2]};
}

QList<QByteArray> RecordLines(const QByteArray &text)
{
    QList<QByteArray> lines = SetLines(text);
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

QList<SetGroup> WholeSetGroups(const QByteArray &text, const QString &where, int &leftOver)
{
    const QList<QByteArray> lines = RecordLines(text);
    QList<SetGroup> groups;
    qsizetype i = 0;
    for (; i + 3 <= lines.size(); i += 3)
        groups << Group(lines, i, where);
    leftOver = static_cast<int>(lines.size() - i);
    return groups;
}

QList<SetGroup> ParseSetText(const QByteArray &text, const QString &where)
{
    int leftOver = 0;
    const QList<SetGroup> groups = WholeSetGroups(text, where, leftOver);
    if (leftOver > 0)
        throw link::FormatError(where, static_cast<int>(3 * groups.size() + 1),
                                QStringLiteral("drei Zeilen je Prüfablauf, hier nur %1").arg(leftOver));
    return groups;
}

SetGroup FirstSetGroup(const QByteArray &text, const QString &where)
{
    const QList<QByteArray> lines = SetLines(text);
    if (lines.size() < 3)
        throw link::FormatError(where, 1, QStringLiteral("mindestens drei Zeilen (ein Prüfablauf)"));
    return Group(lines, 0, where);
}

QByteArray SetText(const QList<SetGroup> &groups)
{
    QByteArray text;
    for (const SetGroup &group : groups) {
        for (const QByteArray &line : group)
            text += line + "\r\n";
    }
    return text;
}

std::array<QByteArray, 3> SetCommands(const SetGroup &group)
{
    return {"prx!add " + group[0], "prx!add &1" + group[1], "prx!add &13" + group[2]};
}

std::optional<QByteArray> ReadSetFile(const QString &path, link::Prompter &prompter)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        prompter.message(QStringLiteral("%1 kann nicht gelesen werden: %2")
                             .arg(QDir::toNativeSeparators(path), file.errorString()),
                         link::Prompter::Icon::Warning);
        return std::nullopt;
    }
    // One byte more than allowed tells a full file from a longer one without reading a huge one whole.
    const QByteArray text = file.read(kMaxSetText + 1);
    if (text.size() > kMaxSetText) {
        prompter.message(kSetTextTooLongText, link::Prompter::Icon::Warning);
        return std::nullopt;
    }
    return text;
}

} // namespace kalvo::specdb
