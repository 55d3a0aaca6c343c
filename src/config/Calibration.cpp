// Calibration backups: the tester's 51 calibration entries to a ".cal" file and back.
#include "Calibration.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace kalvo::config {

namespace {

QString Native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

// A number as the number-to-text conversion writes it: a blank in front when not negative.
QByteArray Str(double value)
{
    const QByteArray digits = QByteArray::number(value, 'g', 15);
    return value >= 0 ? ' ' + digits : digits;
}

QList<QByteArray> FileLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw link::FormatError(Native(path), 0,
                                QStringLiteral("eine lesbare Datei (%1)").arg(file.errorString()));
    QByteArray bytes = file.readAll();
    bytes.replace("\r\n", "\n").replace('\r', '\n');
    QList<QByteArray> lines = bytes.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

bool Skipped(const QByteArray &line, RestoreSource source)
{
    if (line.trimmed().isEmpty())
        return true;
    return source == RestoreSource::MainForm && (line.contains("Optionen") || line.contains("Kalvomer"));
}

} // namespace

QByteArray CalibrationReadCommand(int entry)
{
    return "kal?" + Str(entry);
}

QByteArray CalibrationLine(const QByteArray &command, const QByteArray &answer)
{
    const QByteArray clean = link::StripControlChars(answer);
    const qsizetype yes = clean.indexOf(".Y");
    const qsizetype start = clean.indexOf(';') + 1;
    if (yes < start)
        throw link::FormatError(QStringLiteral("Antwort auf %1").arg(QString::fromLatin1(command)), 0,
                                QStringLiteral("\";\", den Eintrag und \".Y\""));
    return clean.mid(start, yes - start);
}

QList<QByteArray> BackupCalibration(link::Link &link, link::Prompter &prompter, const QString &path,
                                    const LineSink &showLine)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw link::FormatError(Native(path), 0,
                                QStringLiteral("eine beschreibbare Datei (%1)").arg(file.errorString()));
    QList<QByteArray> lines;
    try {
        for (int n = 0; n < kCalibrationEntries; ++n) {
            const QByteArray command = CalibrationReadCommand(n);
            const QByteArray line = CalibrationLine(command, link.Exchange(command));
            file.write(line + "\r\n");
            lines << line;
            if (showLine)
                showLine(QString::fromLatin1(line));
            prompter.progress((n + 1) * 100 / kCalibrationEntries);
        }
    } catch (const link::KalvoError &) {
        file.cancelWriting();
        prompter.message(
            QStringLiteral("Kalibrierwerte nicht gesichert; %1 bleibt unverändert").arg(Native(path)),
            link::Prompter::Icon::Warning);
        throw;
    }
    if (!file.commit())
        throw link::FormatError(Native(path), 0,
                                QStringLiteral("eine beschreibbare Datei (%1)").arg(file.errorString()));
    return lines;
}

QString DefaultBackupName(const QByteArray &shortDesignation)
{
    QString name = QString::fromLatin1(shortDesignation);
    while (name.endsWith(QLatin1Char(' ')))
        name.chop(1);
    for (QChar &c : name) {
        if (QStringLiteral("/\\:*?\"<>|").contains(c) || c.unicode() < 32)
            c = QLatin1Char('_');
    }
    if (name.isEmpty())
        name = QStringLiteral("Kalvomer");
    return name + QStringLiteral(".cal");
}

QString SerialBackupName(const QByteArray &serialNumber)
{
    QByteArray serial = serialNumber;
    serial.replace(" ", "");
    if (serial.contains(QByteArray(6, '\xFF')))
        return QStringLiteral("error");
    if (serial.size() >= 12)
        return QString::fromLatin1(serial.left(7) + '.' + serial.right(3));
    return QString::fromLatin1(serial.left(8)) + QStringLiteral(".cal");
}

namespace {

QList<CalibrationEntry> ParseEntries(const QString &path, const QList<QByteArray> &lines,
                                     RestoreSource source)
{
    QList<CalibrationEntry> entries;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QByteArray &line = lines[i];
        if (Skipped(line, source))
            continue;
        const qsizetype colon = line.indexOf(':');
        const qsizetype comma = line.indexOf(',');
        bool numeric = false;
        line.left(colon).trimmed().toInt(&numeric);
        if (colon < 0 || comma < colon || !numeric)
            throw link::FormatError(Native(path), static_cast<int>(i) + 1,
                                    QStringLiteral("Nummer:Wert,Wert"));
        CalibrationEntry entry;
        entry.line = static_cast<int>(i) + 1;
        entry.number = Str(link::NumericValue(line));
        entry.first = line.mid(colon + 1, comma - colon - 1);
        entry.second = line.mid(comma + 1);
        entries << entry;
    }
    return entries;
}

} // namespace

QList<CalibrationEntry> ReadCalibrationFile(const QString &path, RestoreSource source)
{
    return ParseEntries(path, FileLines(path), source);
}

RestoreResult RestoreCalibration(link::Link &link, link::Prompter &prompter, const QString &path,
                                 RestoreSource source, const LineSink &showLine)
{
    const QList<QByteArray> lines = FileLines(path);
    const QList<CalibrationEntry> entries = ParseEntries(path, lines, source);
    RestoreResult result;
    link::OpenServiceSession(link);
    int shown = 0;
    const auto showUpTo = [&](int lineNumber) {
        for (; showLine && shown < lineNumber; ++shown)
            showLine(QString::fromLatin1(lines[shown]));
    };
    for (const CalibrationEntry &entry : entries) {
        showUpTo(entry.line);
        // Two writes to one entry: the first sets its first value, the second its second.
        link.Exchange("wer!" + entry.number + ',' + entry.first);
        link.Exchange("wer!" + entry.number + ',' + entry.second);
        ++result.entriesWritten;
    }
    showUpTo(static_cast<int>(lines.size()));
    if (prompter.confirm(kStoreQuestion)) {
        link::StoreChanges(link, prompter, link::StoreCommand::Calibration);
        result.stored = true;
    }
    link.Exchange("kal!aus");
    return result;
}

} // namespace kalvo::config
