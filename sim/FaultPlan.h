// Which answers of the virtual tester go wrong, and how.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace kalvo::sim {

enum class FaultKind {
    Silence,      // no answer at all
    NoTerminator, // the answer without its DC1
    Refuse,       // echo + " Protokoll .N"; the line is not carried out
    RefuseStore,  // echo + ".Nx"; the line is not carried out
    Garbage,      // random-looking bytes, then DC1
    CutOff,       // the first half of the answer, no DC1
    Vanish,       // the line disappears for good
    TrailingJunk, // more bytes behind the DC1, in the same burst
    // These spoil an update loader that the matching announce line ("kal!updN") starts.
    NoAck,        // the firmware loader takes lines but never answers "!"
    NoErase,      // no erase report; the programming report and DC1 still come
    RammingOnly,  // the report is lost up to "ramming": it starts with "ramming"
    ResetHalfway, // the tester restarts in the middle of the transfer
};

// Whether the kind spoils an update loader rather than the answer to a line.
bool IsLoaderFault(FaultKind kind);

struct Fault {
    FaultKind kind = FaultKind::Silence;
    QByteArray command;   // the start of the lines it hits, any case; empty: every line
    int fromExchange = 1; // the first exchange it may hit, counted from 1
    int count = -1;       // how many times it hits; -1: no limit
};

class FaultPlan {
public:
    // "KIND[:COMMAND][@N][xCOUNT]", e.g. "silence:dis?", "garbage@3", "refuse:dis?x5".
    // nullopt, with the reason in `error`, when the text is not of that form.
    static std::optional<Fault> Parse(const QString &text, QString *error = nullptr);
    static QString KindName(FaultKind kind);
    static QStringList KindNames();

    void add(const Fault &fault) { m_faults.push_back(fault); }
    // Parses and adds; false (with the reason in `error`) for a malformed text.
    bool add(const QString &text, QString *error = nullptr);
    void clear() { m_faults.clear(); }
    bool isEmpty() const { return m_faults.empty(); }

    // The fault that hits the answer to this line, the `exchange`-th one, if any; uses up one of
    // its count. Loader faults are left for TakeLoader.
    std::optional<FaultKind> Take(const QByteArray &line, int exchange);
    // The loader fault that hits the loader this announce line starts, if any; uses up one of its count.
    std::optional<FaultKind> TakeLoader(const QByteArray &line, int exchange);

private:
    std::optional<FaultKind> TakeFirst(const QByteArray &line, int exchange, bool loader);

    std::vector<Fault> m_faults;
};

} // namespace kalvo::sim
