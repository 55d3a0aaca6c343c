// The language table: the program's texts in one of seven languages, read from "sprachen.TXT".
#pragma once

#include "TextIds.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <array>
#include <optional>

namespace kalvo::link {

inline const QString kLanguageFileName = QStringLiteral("sprachen.TXT");
// Many times any real language file; a larger one is refused rather than read whole.
constexpr qint64 kMaxLanguageFileSize = 4 * 1024 * 1024;

// "sprachen.TXT" as rows of cells: ";" ends a cell, CR ends a row, other control bytes are dropped.
using LanguageGrid = QList<QList<QByteArray>>;
LanguageGrid ReadLanguageGrid(const QByteArray &bytes);
// A cell as text: UTF-8 when it is valid UTF-8, otherwise Windows-1252.
QString DecodeLanguageCell(const QByteArray &cell);

struct LanguageColumn {
    QString name;      // as the language switch takes it: "deutsch", "englisch", ...
    int column;        // its column in the grid
    QString helpFile;  // the help file of the language, in the program folder
    QString menuEntry; // the language menu entry that chooses it
    QString code;      // its ISO 639-1 code ("de"), for Qt's own translations
};
// In the order the switch compares them: deutsch, englisch, französisch, italienisch,
// tschechisch, nederlandske, spain.
const std::array<LanguageColumn, 7> &LanguageColumns();
std::optional<LanguageColumn> FindLanguage(const QString &name);

class LanguageTable {
public:
    static constexpr int kEntries = 201;

    // Starts with the built-in German texts.
    LanguageTable();

    // Copies the column of `name` from `grid`; an unknown name changes nothing and returns false.
    // Throws FormatError, changing nothing, when the grid has more rows than the table has
    // entries, or when no row below the column heads holds a text for the language (a file
    // without ";" has none).
    bool SetLanguage(const QString &name, const LanguageGrid &grid);
    // Reads `path` and switches to `name`; false, with `error` set and the table unchanged, when
    // the file cannot be read, is larger than kMaxLanguageFileSize or cannot be used.
    bool SetLanguageFromFile(const QString &name, const QString &path, QString *error = nullptr);
    // True once a column of the language file has been taken; false while the built-in German holds.
    bool fromFile() const { return m_fromFile; }

    QString text(int id) const;
    const QString &language() const { return m_language; }
    const QString &helpFile() const { return m_helpFile; }

private:
    std::array<QString, kEntries> m_texts;
    QString m_language = QStringLiteral("deutsch");
    QString m_helpFile;
    bool m_fromFile = false;
};

} // namespace kalvo::link
