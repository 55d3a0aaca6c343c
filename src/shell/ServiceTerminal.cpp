// The service terminal's operations: single commands, command scripts, help-text stepping,
// direct printing and the views of the development trace.
#include "ServiceTerminal.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"

#include <QFile>
#include <QList>
#include <QSaveFile>

namespace kalvo::shell {

namespace {

QByteArray ReadScript(const QString &scriptPath)
{
    QFile script(scriptPath);
    if (!script.open(QIODevice::ReadOnly))
        throw link::FormatError(scriptPath, 0,
                                QStringLiteral("eine lesbare Ablaufdatei (%1)").arg(script.errorString()));
    // One byte beyond the limit tells a file that is too large from one that just fits.
    QByteArray bytes = script.read(kMaxScriptBytes + 1);
    if (bytes.size() > kMaxScriptBytes)
        throw link::FormatError(
            scriptPath, 0, QStringLiteral("eine Ablaufdatei von höchstens %1 Bytes").arg(kMaxScriptBytes));
    return bytes;
}

} // namespace

QByteArray SendTerminalCommand(link::Link &link, const QString &command)
{
    // Pasted or given text may hold several lines: each is a command of its own, sent once the
    // answer to the one before is in.
    QList<QByteArray> lines = link::SplitLines(link::EncodeTesterText(command));
    if (lines.isEmpty())
        lines << QByteArray(); // a lone CR, as an empty command line sends
    QByteArray answers;
    for (const QByteArray &line : std::as_const(lines))
        answers += link.Exchange(line);
    return answers;
}

int RunCommandScript(link::Link &link, const QString &scriptPath, const QString &resultPath,
                     const std::function<void(const QString &)> &showLine)
{
    const QList<QByteArray> lines = link::SplitLines(ReadScript(scriptPath));
    QSaveFile result(resultPath);
    if (!result.open(QIODevice::WriteOnly))
        throw link::FormatError(resultPath, 0,
                                QStringLiteral("eine schreibbare Datei (%1)").arg(result.errorString()));

    int count = 0;
    for (const QByteArray &line : lines) {
        const qsizetype comment = line.indexOf(';');
        if (comment >= 0)
            result.write(line.mid(comment) + "\r\n");
        // The script is a file of the PC: its "ü" goes out as the tester's, as a typed one does.
        const QString text = link::DecodePcText(line);
        if (showLine)
            showLine(text);
        const QByteArray answer = SendTerminalCommand(link, text);
        if (answer.contains("Wertx="))
            result.write(answer + "\r\n");
        ++count;
    }
    if (!result.commit())
        throw link::FormatError(resultPath, 0,
                                QStringLiteral("eine schreibbare Datei (%1)").arg(result.errorString()));
    return count;
}

QString ReadScriptResult(const QString &resultPath)
{
    QFile file(resultPath);
    if (!file.open(QIODevice::ReadOnly))
        throw link::FormatError(resultPath, 0,
                                QStringLiteral("eine lesbare Datei (%1)").arg(file.errorString()));
    QString text;
    while (!file.atEnd()) {
        QByteArray line = file.readLine();
        while (line.endsWith('\n') || line.endsWith('\r'))
            line.chop(1);
        text += link::DecodeTesterText(line) + QStringLiteral("\r\n");
    }
    return text;
}

void HelpStepper::Next(link::Link &link)
{
    if (m_next != 1)
        link.Exchange("tas!1");
    link.Exchange("brk!H " + QByteArray::number(m_next));
    link.Exchange("tas!1");
    ++m_next;
}

void HelpStepper::Stop(link::Link &link)
{
    link.Exchange("sst!0");
}

void SetDirectPrinting(link::Link &link, bool on)
{
    link.Exchange(on ? "bit!04 1" : "bit!04 0");
}

QString TraceAsText(const QByteArray &trace)
{
    return link::DecodeTesterText(trace);
}

QString TraceAsCodes(const QByteArray &trace)
{
    QString text;
    for (char ch : trace) {
        if (ch == '\n')
            continue;
        if (ch == '\r')
            text += QStringLiteral(" 13 10\n");
        else
            text += QLatin1Char(' ') + QString::number(static_cast<unsigned char>(ch));
    }
    return text;
}

QByteArray TakeTrace(link::Link &link, const QString &tracePath)
{
    const bool wasTracing = link.tracing();
    link.StopTrace();
    QFile file(tracePath);
    QByteArray trace;
    if (file.open(QIODevice::ReadOnly))
        trace = file.readAll();
    file.close();
    // The trace starts afresh: the old one lives on only in what is returned.
    if (wasTracing)
        link.StartTrace(tracePath);
    else if (file.exists() && file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.close();
    return trace;
}

} // namespace kalvo::shell
