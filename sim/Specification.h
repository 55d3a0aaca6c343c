// A test specification as the tester keeps it: taken in from "prx!add " chunks, given out as the
// three parts of a "DATABASE" record.
#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

namespace kalvo::sim {

struct Specification {
    static constexpr int kItems = 22; // limit items, each an extra field and a limit text
    static constexpr int kCodeChars = 40;

    QByteArray label;        // as sent: the running number, a blank and the name
    QByteArray codes;        // 40 upper-case hexadecimal characters
    QByteArray date;         // dd.mm.yy
    QByteArray time;         // h:n:s
    QList<QByteArray> items; // extra field 1, limit 1, extra field 2, ...: two texts an item

    int itemCount() const { return static_cast<int>(items.size() / 2); }
    bool complete() const { return itemCount() == kItems; }
    // The first hexadecimal digit of code element 6: the regulation.
    int regulation() const;

    // The first chunk: label ";" blank ";" codes ";" date ";" time, then any number of items.
    // nullopt when any part is malformed.
    static std::optional<Specification> FromFirstChunk(const QByteArray &argument);
    // A continuation "&N" + items: N must be the next item. False, changing nothing, otherwise.
    bool Continue(const QByteArray &argument);

    // Part 0..2 of the "DATABASE" record number `number`. Fields: marker, codes, label, date,
    // time, then the items (1..8 in part 0, 9..16 in part 1, 17..22 in part 2). With
    // `leadingSeparator` each part begins with a ";" of its own in front of the fields it continues;
    // without it parts 1 and 2 are the record's text as it was sent, each item's own ";" first.
    QByteArray Part(int number, int part, bool leadingSeparator = true) const;
};

} // namespace kalvo::sim
