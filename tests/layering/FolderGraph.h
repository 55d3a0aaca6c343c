// The graph of source folders that include each other, and a cycle in it.
#pragma once

#include "SourceIncludes.h"

#include <QMap>
#include <QSet>
#include <QStringList>

namespace kalvo::layering {

// Folder -> the other folders its files include (quoted includes only).
using FolderGraph = QMap<QString, QSet<QString>>;

FolderGraph BuildFolderGraph(const QList<Include> &includes);
// The folders of one cycle in order, the first again at the end ("a", "b", "a"); empty when the
// graph has none.
QStringList FindCycle(const FolderGraph &graph);

} // namespace kalvo::layering
