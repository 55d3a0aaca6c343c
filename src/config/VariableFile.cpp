// The symbol file "variable.mas": names of the tester's variables and bits, and the dump block.
#include "VariableFile.h"

#include "link/CodePages.h"
#include "link/Errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kalvo::config {

namespace {

// The file is the program's own text: Windows-1252 where it is not plain ASCII.
QString Decode(const QByteArray &bytes)
{
    return link::DecodeCodePage(link::CodePage::Windows1252, bytes);
}

QStringList Lines(const QByteArray &bytes)
{
    QString text = Decode(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// A line read field by field: a comma ends a field as the line end does, a field in double
// quotes keeps its commas, and blanks in front of a field are skipped.
QStringList Fields(const QString &line)
{
    QStringList fields;
    qsizetype i = 0;
    const qsizetype n = line.size();
    while (i <= n) {
        while (i < n && line[i] == QLatin1Char(' '))
            ++i;
        QString field;
        if (i < n && line[i] == QLatin1Char('"')) {
            const qsizetype close = line.indexOf(QLatin1Char('"'), i + 1);
            const qsizetype end = close < 0 ? n : close;
            field = line.mid(i + 1, end - i - 1);
            const qsizetype comma = line.indexOf(QLatin1Char(','), end);
            i = comma < 0 ? n + 1 : comma + 1;
        } else {
            const qsizetype comma = line.indexOf(QLatin1Char(','), i);
            const qsizetype end = comma < 0 ? n : comma;
            field = line.mid(i, end - i);
            i = end + 1;
        }
        fields << field;
    }
    return fields;
}

// The comment of a block line: three characters after the first "H" + tab; where the address
// has no "H" (the "EQU D3" form) the text after the ";" behind "EQU".
QString BlockComment(const QString &line, qsizetype equ)
{
    const qsizetype h = line.indexOf(QStringLiteral("H\t"));
    if (h >= 0)
        return line.mid(h + 3);
    const qsizetype semicolon = line.indexOf(QLatin1Char(';'), equ);
    return semicolon < 0 ? QString() : line.mid(semicolon + 1);
}

} // namespace

VariableFile VariableFile::Load(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw link::FormatError(QDir::toNativeSeparators(path), 0,
                                QStringLiteral("eine lesbare Datei (%1)").arg(file.errorString()));
    const QByteArray bytes = file.read(kMaxVariableFileSize + 1);
    if (bytes.size() > kMaxVariableFileSize)
        throw link::FormatError(QDir::toNativeSeparators(path), 0,
                                QStringLiteral("höchstens %1 Bytes, die Datei hat %2")
                                    .arg(kMaxVariableFileSize)
                                    .arg(std::max(file.size(), qint64(bytes.size()))));
    return Parse(bytes, QFileInfo(path).fileName());
}

VariableFile VariableFile::Parse(const QByteArray &bytes, const QString &fileName)
{
    VariableFile result;
    result.m_fileName = fileName;
    const QStringList lines = Lines(bytes);
    bool inBlock = false;
    for (qsizetype number = 0; number < lines.size(); ++number) {
        const QString &line = lines[number];
        const int lineNumber = static_cast<int>(number) + 1;
        for (const QString &field : Fields(line)) {
            if (field.startsWith(QLatin1Char(';')))
                continue;
            // "EQU" at the very start leaves no room for a name: not a definition.
            const qsizetype equ = field.indexOf(QStringLiteral("EQU"));
            if (equ < 1)
                continue;
            const qsizetype tab = field.indexOf(QLatin1Char('\t'));
            if (tab < 0 || tab > equ)
                throw link::FormatError(fileName, lineNumber, QStringLiteral("Name, Tabulator, \"EQU\""));
            const QString value = field.mid(equ + 4, 4);
            const QString address = value.endsWith(QLatin1Char('H')) ? value.mid(1, 2) : value.left(2);
            result.m_entries << field.left(tab) + QLatin1Char('#') + address;
        }
        if (line.contains(QStringLiteral("bis hier speichern"))) {
            inBlock = false;
        } else if (line.contains(QStringLiteral("ab hier speichern"))) {
            inBlock = true;
        } else if (inBlock) {
            const qsizetype equ = line.indexOf(QStringLiteral("EQU"));
            if (equ < 0)
                continue;
            // More entries than the dump can label spoil the dump only, not the variable list.
            if (++result.m_blockCount > kMaxBlockEntries) {
                if (result.m_firstLineTooMany == 0)
                    result.m_firstLineTooMany = lineNumber;
                continue;
            }
            result.m_blockEntries << line.left(equ) + BlockComment(line, equ);
        }
    }
    return result;
}

const QStringList &VariableFile::blockEntries() const
{
    if (m_blockCount > kMaxBlockEntries)
        throw link::FormatError(m_fileName, m_firstLineTooMany,
                                QStringLiteral("höchstens %1 Einträge zwischen \"ab hier speichern\" und "
                                               "\"bis hier speichern\", gefunden %2")
                                    .arg(kMaxBlockEntries)
                                    .arg(m_blockCount));
    return m_blockEntries;
}

QString VariableFile::Locate()
{
    if (QFileInfo::exists(kVariableFileName))
        return kVariableFileName;
    const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath(kVariableFileName);
    return QFileInfo::exists(beside) ? beside : kVariableFileName;
}

QString VariableFile::Find(const QString &nameOrAddress) const
{
    for (const QString &entry : m_entries) {
        if (SplitEntry(entry).name.compare(nameOrAddress, Qt::CaseInsensitive) == 0)
            return entry;
    }
    for (const QString &entry : m_entries) {
        if (SplitEntry(entry).address.compare(nameOrAddress, Qt::CaseInsensitive) == 0)
            return entry;
    }
    return {};
}

VariableEntry SplitEntry(const QString &entry)
{
    const qsizetype hash = entry.indexOf(QLatin1Char('#'));
    if (hash < 0)
        return {entry, QString()};
    return {entry.left(hash), entry.mid(hash + 1)};
}

} // namespace kalvo::config
