// The four kinds of update content: their file masks, announce commands and refusal texts.
#pragma once

#include "link/TextIds.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <optional>

namespace kalvo::update {

enum class ContentKind { System, Pictures, Sequences, Help };

struct ContentKindInfo {
    ContentKind kind;
    QString mask;         // the file list's mask, e.g. "a*.p"
    QByteArray announce;  // the loader command sent ahead of the file, e.g. "kal!upd1"
    link::TextId refusal; // the language table's text when the update is not permitted
    bool lineTransfer;    // firmware goes line by line, the packages as one stream
};

// In the order the package run loads them: firmware, pictures, sequences, help.
const std::array<ContentKindInfo, 4> &ContentKinds();
const ContentKindInfo &InfoFor(ContentKind kind);

// The kind whose mask the file name fits (as a file list matches it: case does not matter);
// nullopt for a name that fits none.
std::optional<ContentKind> KindForFileName(const QString &fileName);

} // namespace kalvo::update
