// Calibration backups: the tester's 51 calibration entries to a ".cal" file and back.
#include "Calibration.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"
#include "link/TextsInLanguage.h"
#include "platform/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <optional>

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

// A backup is 51 short lines; even with heading lines a real one stays far below this.
constexpr qint64 kMaxCalibrationFileBytes = 1024 * 1024;

QList<QByteArray> FileLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw link::FormatError(Native(path), 0,
                                QStringLiteral("eine lesbare Datei (%1)").arg(file.errorString()));
    if (file.size() > kMaxCalibrationFileBytes)
        throw link::FormatError(Native(path), 0,
                                QStringLiteral("eine Kalibrierdatei von höchstens %1 Bytes, nicht %2 Bytes")
                                    .arg(kMaxCalibrationFileBytes)
                                    .arg(file.size()));
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

bool IsCalibrationValue(const QByteArray &text)
{
    static const QRegularExpression number(
        QStringLiteral("^ *[-+]?(\\d+\\.?\\d*|\\.\\d+)([eE][-+]?\\d+)? *$"));
    return number.match(QString::fromLatin1(text)).hasMatch();
}

namespace {

// "n:a,b": the entry number (trimmed) and the two values, or nullopt when the line is not of that form.
std::optional<CalibrationEntry> SplitCalibrationLine(const QByteArray &line)
{
    const qsizetype colon = line.indexOf(':');
    const qsizetype comma = line.indexOf(',');
    if (colon < 0 || comma < colon)
        return std::nullopt;
    // The whole text before ":" must be the number: "25-6" is not entry 25.
    bool whole = false;
    const qlonglong entry = line.left(colon).trimmed().toLongLong(&whole);
    if (!whole || entry < 0 || entry >= kCalibrationEntries)
        return std::nullopt;
    CalibrationEntry result;
    result.number = Str(static_cast<double>(entry));
    result.first = line.mid(colon + 1, comma - colon - 1);
    result.second = line.mid(comma + 1);
    if (!IsCalibrationValue(result.first) || !IsCalibrationValue(result.second))
        return std::nullopt;
    return result;
}

} // namespace

QByteArray CalibrationLine(int entry, const QByteArray &command, const QByteArray &answer)
{
    const QByteArray clean = link::StripControlChars(answer);
    const qsizetype yes = clean.indexOf(".Y");
    const qsizetype start = clean.indexOf(';') + 1;
    const QByteArray line = yes < start ? QByteArray() : clean.mid(start, yes - start);
    const auto parts = SplitCalibrationLine(line);
    if (!parts || parts->number != Str(entry))
        throw link::FormatError::ForAnswer(command, answer,
                                           QStringLiteral("\";%1:Wert,Wert.Y\" mit zwei Zahlen").arg(entry));
    return line;
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
            const QByteArray line = CalibrationLine(n, command, link.Exchange(command));
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

namespace {

// A name Windows keeps for a device (a tester called "NUL" or "COM1") gets a "_" behind its stem,
// so that the backup becomes a file and not a write to the device.
QString Unreserved(const QString &fileName)
{
    if (!platform::IsReservedFileName(fileName))
        return fileName;
    QString name = fileName;
    const qsizetype dot = name.indexOf(QLatin1Char('.'));
    return name.insert(dot < 0 ? name.size() : dot, QLatin1Char('_'));
}

} // namespace

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
    return Unreserved(name + QStringLiteral(".cal"));
}

QString SerialBackupName(const QByteArray &serialNumber)
{
    QByteArray serial = serialNumber;
    serial.replace(" ", "");
    if (serial.contains(QByteArray(6, '\xFF')))
        return QStringLiteral("error");
    if (serial.size() >= 12)
        return Unreserved(QString::fromLatin1(serial.left(7) + '.' + serial.right(3)));
    return Unreserved(QString::fromLatin1(serial.left(8)) + QStringLiteral(".cal"));
}

QStringList CalibrationBackupNames(const QByteArray &shortDesignation, const QByteArray &serialNumber)
{
    QStringList names;
    if (!shortDesignation.trimmed().isEmpty())
        names << DefaultBackupName(shortDesignation);
    if (!serialNumber.trimmed().isEmpty() && !names.contains(SerialBackupName(serialNumber)))
        names << SerialBackupName(serialNumber);
    return names;
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
        auto entry = SplitCalibrationLine(line);
        if (!entry)
            throw link::FormatError(Native(path), static_cast<int>(i) + 1,
                                    QStringLiteral("Nummer 0 bis 50:Zahl,Zahl, nicht \"%1\"")
                                        .arg(link::EscapeBytes(line.left(80))));
        entry->line = static_cast<int>(i) + 1;
        entries << *entry;
    }
    return entries;
}

} // namespace

QList<CalibrationEntry> ReadCalibrationFile(const QString &path, RestoreSource source)
{
    return ParseEntries(path, FileLines(path), source);
}

namespace {

// Below the question: what storing replaces.
QString ReplacedText(int entries, const QString &path, const QString &language)
{
    static const link::LanguageTexts kEntries = {u"%1 Eintrag|%1 Einträge",
                                                 u"%1 entry|%1 entries",
                                                 u"%1 entrée|%1 entrées",
                                                 u"%1 voce|%1 voci",
                                                 u"%1 položka|%1 položky|%1 položek",
                                                 u"%1 item|%1 items",
                                                 u"%1 entrada|%1 entradas"};
    static const link::LanguageTexts kReplaced = {
        u"Die gespeicherten Kalibrierwerte des Kalvomer werden durch %1 aus %2 ersetzt.",
        u"The calibration values stored in the Kalvomer are replaced by %1 from %2.",
        u"Les valeurs d'étalonnage enregistrées dans le Kalvomer sont remplacées par %1 de %2.",
        u"I valori di taratura memorizzati nel Kalvomer vengono sostituiti da %1 di %2.",
        u"Kalibrační hodnoty uložené v přístroji Kalvomer budou nahrazeny: %1 ze souboru %2.",
        u"De in de Kalvomer opgeslagen kalibratiewaarden worden vervangen door %1 uit %2.",
        u"Los valores de calibración guardados en el Kalvomer se sustituyen por %1 de %2."};
    return link::InLanguage(kReplaced, language)
        .arg(link::CountedText(kEntries, entries, language), QDir::toNativeSeparators(path));
}

} // namespace

RestoreResult RestoreCalibration(link::Link &link, link::Prompter &prompter, const QString &path,
                                 RestoreSource source, const LineSink &showLine, const QString &language)
{
    const QList<QByteArray> lines = FileLines(path);
    const QList<CalibrationEntry> entries = ParseEntries(path, lines, source);
    RestoreResult result;
    const link::RefusalWatch watch(link);
    link::OpenServiceSession(link);
    int shown = 0;
    const auto showUpTo = [&](int lineNumber) {
        for (; showLine && shown < lineNumber; ++shown)
            showLine(QString::fromLatin1(lines[shown]));
    };
    for (const CalibrationEntry &entry : entries) {
        showUpTo(entry.line);
        // Two writes to one entry: the first sets its first value, the second its second.
        for (const QByteArray &value : {entry.first, entry.second})
            link::SendSetting(link, "wer!" + entry.number + ',' + value);
        ++result.entriesWritten;
    }
    showUpTo(static_cast<int>(lines.size()));
    result.refused = watch.commands();
    QString question = result.refused.isEmpty()
                           ? kStoreQuestion
                           : QStringLiteral("Abgelehnt: %1\n%2").arg(watch.Describe(), kStoreQuestion);
    question += QStringLiteral("\n\n") + ReplacedText(result.entriesWritten, path, language);
    if (prompter.confirmLoss(question))
        result.stored = link::StoreChanges(link, prompter, link::StoreCommand::Calibration);
    link::SendSetting(link, "kal!aus");
    return result;
}

} // namespace kalvo::config
