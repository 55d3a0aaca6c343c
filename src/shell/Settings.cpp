// The settings file "Q417.ini": port, port number, language and the update-without-version-check option.
#include "Settings.h"

#include "link/TextRules.h"

#include <QDir>
#include <QFile>
#include <QList>

namespace kalvo::shell {

QByteArray SettingsLineValue(const QByteArray &line)
{
    const qsizetype separator = line.indexOf(';');
    if (separator <= 0)
        return line;
    return line.left(separator);
}

// Port names are shown upper-cased ("com 2" is "COM 2"); a device path keeps its case, because
// on Linux "/dev/ttyUSB0" and "/DEV/TTYUSB0" are different files.
static QString ChooserPortName(const QString &name)
{
    if (name.contains(QLatin1Char('/')))
        return name.trimmed();
    return name.toUpper();
}

// The number on a line: 0 when there is none (as the numeric value of a text is), nullopt with a
// warning when there is one outside [minimum, maximum].
static std::optional<qint64> LineNumber(const QByteArray &value, int line, qint64 minimum, qint64 maximum,
                                        const QString &fallback, QStringList &warnings)
{
    if (const auto number = link::WholeNumber(value, minimum, maximum))
        return number;
    // No number at all reads as 0, as the numeric value of text does; only one out of range is told.
    if (!link::HasLeadingNumber(value))
        return 0;
    warnings << QStringLiteral("%1, Zeile %2: \"%3\" liegt außerhalb von %4 bis %5, es gilt %6.")
                    .arg(kSettingsFileName)
                    .arg(line + 1)
                    .arg(QString::fromLatin1(value.trimmed().left(40)))
                    .arg(minimum)
                    .arg(maximum)
                    .arg(fallback);
    return std::nullopt;
}

Settings ParseSettings(const QByteArray &text)
{
    // Lines end in CR LF, LF or CR alone; all values are applied only after the whole file is read.
    QByteArray normalised = text;
    normalised.replace("\r\n", "\n");
    normalised.replace('\r', '\n');
    QList<QByteArray> lines = normalised.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();

    Settings settings;
    settings.fromFile = true;
    const auto value = [&](int index) { return SettingsLineValue(lines[index]); };
    if (lines.size() > 0)
        settings.portName = ChooserPortName(QString::fromLatin1(value(0)));
    if (lines.size() > 1) {
        const auto number = LineNumber(value(1), 1, 0, kMaxPortNumber, QString::number(settings.portNumber),
                                       settings.warnings);
        if (number)
            settings.portNumber = static_cast<int>(*number);
    }
    if (lines.size() > 2)
        settings.language = QString::fromLatin1(value(2)).trimmed();
    if (lines.size() > 4) {
        const auto number =
            LineNumber(value(4), 4, -kOptionLimit, kOptionLimit, QStringLiteral("aus"), settings.warnings);
        settings.updateWithoutVersionCheck = number && *number != 0;
    }
    return settings;
}

Settings ReadSettings(const QString &dir)
{
    QFile file(QDir(dir.isEmpty() ? QDir::currentPath() : dir).filePath(kSettingsFileName));
    if (!file.open(QIODevice::ReadOnly))
        return Settings{};
    const QByteArray bytes = file.read(kMaxSettingsFileSize + 1);
    if (bytes.size() <= kMaxSettingsFileSize)
        return ParseSettings(bytes);
    Settings settings = ParseSettings(bytes.left(kMaxSettingsFileSize));
    settings.warnings.prepend(QStringLiteral("%1 hat %2 Bytes; gelesen werden nur die ersten %3.")
                                  .arg(kSettingsFileName)
                                  .arg(std::max(file.size(), qint64(bytes.size())))
                                  .arg(kMaxSettingsFileSize));
    return settings;
}

} // namespace kalvo::shell
