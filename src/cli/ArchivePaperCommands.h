// kalvo-cli archive labels / signed / find: test labels, signed reports and a label's device.
#pragma once

#include "CliWords.h"

#include "archive/ArchiveTypes.h"

#include <functional>

namespace kalvo::cli {

class CliContext;

// The synopsis of the actions below, for the archive command's usage line.
QString ArchivePaperSynopsis();
// Whether `action` is one of "labels", "signed", "find".
bool IsArchivePaperAction(const QString &action);
// Runs the action of `words` (the action first); `filterOptions` are the search's value options
// and `filterFrom` reads a search from the split words, as the other archive actions do.
int RunArchivePaperAction(CliContext &context, const QStringList &words, const QStringList &filterOptions,
                          const std::function<archive::ArchiveFilter(const Words &)> &filterFrom);

} // namespace kalvo::cli
