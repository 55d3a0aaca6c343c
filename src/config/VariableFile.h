// The symbol file "variable.mas": names of the tester's variables and bits, and the dump block.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace kalvo::config {

inline const QString kVariableFileName = QStringLiteral("variable.mas");
// The dump block may hold no more entries than this.
constexpr int kMaxBlockEntries = 50;
// Far beyond any symbol file; a larger one is refused rather than read whole.
constexpr qint64 kMaxVariableFileSize = 4 * 1024 * 1024;

class VariableFile {
public:
    // Reads `path`; throws link::FormatError when it is missing, larger than
    // kMaxVariableFileSize, or holds a definition without a tab before its name.
    static VariableFile Load(const QString &path);
    // The same from the file's bytes; `fileName` names it in error messages.
    static VariableFile Parse(const QByteArray &bytes, const QString &fileName);
    // "variable.mas" in the current directory, else in the program's folder; that one when neither.
    static QString Locate();

    // One per definition: name + "#" + two-digit address, e.g. "VOPTD3#D3", in file order.
    const QStringList &entries() const { return m_entries; }
    // The definitions between "ab hier speichern" and "bis hier speichern", each the text before
    // "EQU" followed by its comment; entry 1 is shown beside D0, entry 48 beside FF. They label
    // the configuration dump, which refuses a block of more than kMaxBlockEntries: this throws
    // link::FormatError naming the file, the line of the first entry too many and the count.
    // The variable list (entries()) is not affected.
    const QStringList &blockEntries() const;
    // How many definitions the block holds, more than kMaxBlockEntries included.
    int blockEntryCount() const { return m_blockCount; }

    // The entry with this name (any case) or, when none has it, with this two-digit address.
    QString Find(const QString &nameOrAddress) const;

private:
    QString m_fileName;
    QStringList m_entries;
    QStringList m_blockEntries; // the first kMaxBlockEntries
    int m_blockCount = 0;
    int m_firstLineTooMany = 0;
};

// "NAME#AD" split at "#".
struct VariableEntry {
    QString name;
    QString address;
};
VariableEntry SplitEntry(const QString &entry);

} // namespace kalvo::config
