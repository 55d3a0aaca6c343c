// The settings file "Q417.ini": port, port number, language and the update-without-version-check option.
#include "Settings.h"

#include "link/TextRules.h"

#include <QDir>
#include <QFile>
#include <QList>
#include <limits>

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
    if (lines.size() > 1) // a number beyond an int is no port number either
        settings.portNumber = static_cast<int>(
            link::WholeNumber(value(1), std::numeric_limits<int>::min(), std::numeric_limits<int>::max())
                .value_or(0));
    if (lines.size() > 2)
        settings.language = QString::fromLatin1(value(2)).trimmed();
    if (lines.size() > 4)
        settings.updateWithoutVersionCheck = link::NumericValue(value(4)) != 0;
    return settings;
}

Settings ReadSettings(const QString &dir)
{
    QFile file(QDir(dir.isEmpty() ? QDir::currentPath() : dir).filePath(kSettingsFileName));
    if (!file.open(QIODevice::ReadOnly))
        return Settings{};
    return ParseSettings(file.readAll());
}

} // namespace kalvo::shell
