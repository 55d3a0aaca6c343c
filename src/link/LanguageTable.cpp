// The language table: the program's texts in one of seven languages, read from "sprachen.TXT".
#include "LanguageTable.h"

#include "TextRules.h"

#include "link/Errors.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>

namespace kalvo::link {

LanguageGrid ReadLanguageGrid(const QByteArray &bytes)
{
    LanguageGrid grid;
    QList<QByteArray> row;
    QByteArray cell;
    bool rowOpen = false;
    for (char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if (ch == ';') {
            row.append(cell);
            cell.clear();
            rowOpen = true;
        } else if (ch == '\r') {
            row.append(cell);
            grid.append(row);
            row.clear();
            cell.clear();
            rowOpen = false;
        } else if (c >= 32) {
            cell.append(ch);
            rowOpen = true;
        }
    }
    if (rowOpen) {
        row.append(cell);
        grid.append(row);
    }
    return grid;
}

QString DecodeLanguageCell(const QByteArray &cell)
{
    return DecodePcText(cell);
}

const std::array<LanguageColumn, 7> &LanguageColumns()
{
    static const std::array<LanguageColumn, 7> kColumns = {{
        {QStringLiteral("deutsch"), 1, QStringLiteral("Q417G.html"), QStringLiteral("deutsch"),
         QStringLiteral("de")},
        {QStringLiteral("englisch"), 2, QStringLiteral("Q417GB.html"), QStringLiteral("english"),
         QStringLiteral("en")},
        {QStringLiteral("französisch"), 3, QStringLiteral("Q417FR.html"), QStringLiteral("france"),
         QStringLiteral("fr")},
        {QStringLiteral("italienisch"), 4, QStringLiteral("Q417IT.html"), QStringLiteral("italiano"),
         QStringLiteral("it")},
        {QStringLiteral("tschechisch"), 5, QStringLiteral("Q417TS.html"), QStringLiteral("tschech"),
         QStringLiteral("cs")},
        {QStringLiteral("nederlandske"), 6, QStringLiteral("Q417NL.html"), QStringLiteral("nederlandske"),
         QStringLiteral("nl")},
        {QStringLiteral("spain"), 7, QStringLiteral("Q417ES.html"), QStringLiteral("spain"),
         QStringLiteral("es")},
    }};
    return kColumns;
}

std::optional<LanguageColumn> FindLanguage(const QString &name)
{
    for (const LanguageColumn &column : LanguageColumns())
        if (column.name == name)
            return column;
    return std::nullopt;
}

LanguageTable::LanguageTable()
{
    for (const TextDefault &entry : TextDefaults())
        m_texts[static_cast<size_t>(entry.id)] = QString::fromUtf8(entry.german);
    m_helpFile = LanguageColumns()[0].helpFile;
}

bool LanguageTable::SetLanguage(const QString &name, const LanguageGrid &grid)
{
    const auto column = FindLanguage(name);
    if (!column)
        return false;
    if (grid.size() > kEntries)
        throw link::FormatError(
            kLanguageFileName, kEntries + 1,
            QStringLiteral("höchstens %1 Zeilen, gefunden %2").arg(kEntries).arg(grid.size()));
    // Empty rows are normal (entries the installation does not use); a column without a single
    // text would blank every caption without a word.
    const auto hasText = [&](const QList<QByteArray> &row) {
        return column->column < row.size() && !row[column->column].trimmed().isEmpty();
    };
    if (std::none_of(grid.begin() + std::min<qsizetype>(1, grid.size()), grid.end(), hasText)) {
        const bool anySeparator =
            std::any_of(grid.begin(), grid.end(), [](const auto &row) { return row.size() > 1; });
        throw link::FormatError(
            kLanguageFileName, 0,
            anySeparator ? QStringLiteral("Texte für %1 in Spalte %2, die Datei hat dort keinen")
                               .arg(column->name)
                               .arg(column->column + 1)
                         : QStringLiteral("Spalten, getrennt durch \";\", die Datei hat kein \";\""));
    }
    std::array<QString, kEntries> texts;
    for (qsizetype row = 0; row < grid.size(); ++row)
        if (column->column < grid[row].size())
            texts[static_cast<size_t>(row)] = DecodeLanguageCell(grid[row][column->column]);
    m_texts = texts;
    m_language = column->name;
    m_helpFile = column->helpFile;
    m_fromFile = true;
    return true;
}

bool LanguageTable::SetLanguageFromFile(const QString &name, const QString &path, QString *error)
{
    QString problem;
    const bool switched = [&] {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            problem = QStringLiteral("%1 kann nicht gelesen werden: %2").arg(path, file.errorString());
            return false;
        }
        const QByteArray bytes = file.read(kMaxLanguageFileSize + 1);
        if (bytes.size() > kMaxLanguageFileSize) {
            problem = QStringLiteral("%1 hat %2 Bytes, mehr als die %3 einer Sprachdatei.")
                          .arg(path)
                          .arg(std::max(file.size(), qint64(bytes.size())))
                          .arg(kMaxLanguageFileSize);
            return false;
        }
        try {
            return SetLanguage(name, ReadLanguageGrid(bytes));
        } catch (const link::FormatError &e) {
            problem = e.message();
            return false;
        }
    }();
    if (error)
        *error = problem;
    return switched;
}

QString LanguageTable::text(int id) const
{
    if (id < 0 || id >= kEntries)
        return {};
    return m_texts[static_cast<size_t>(id)];
}

} // namespace kalvo::link
