// The symbol file "variable.mas": names of the tester's variables and bits, and the dump block.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace kalvo::config {

inline const QString kVariableFileName = QStringLiteral("variable.mas");
// The dump block may hold no more entries than this.
constexpr int kMaxBlockEntries = 50;

class VariableFile {
public:
    // Reads `path`; throws link::FormatError when it is missing, holds a definition without a
    // tab before its name, or more than kMaxBlockEntries entries in the dump block.
    static VariableFile Load(const QString &path);
    // The same from the file's bytes; `fileName` names it in error messages.
    static VariableFile Parse(const QByteArray &bytes, const QString &fileName);
    // "variable.mas" in the current directory, else in the program's folder; that one when neither.
    static QString Locate();

    // One per definition: name + "#" + two-digit address, e.g. "VOPTD3#D3", in file order.
    const QStringList &entries() const { return m_entries; }
    // The definitions between "ab hier speichern" and "bis hier speichern", each the text before
    // "EQU" followed by its comment; entry 1 is shown beside D0, entry 48 beside FF.
    const QStringList &blockEntries() const { return m_blockEntries; }

    // The entry with this name (any case) or, when none has it, with this two-digit address.
    QString Find(const QString &nameOrAddress) const;

private:
    QStringList m_entries;
    QStringList m_blockEntries;
};

// "NAME#AD" split at "#".
struct VariableEntry {
    QString name;
    QString address;
};
VariableEntry SplitEntry(const QString &entry);

} // namespace kalvo::config
