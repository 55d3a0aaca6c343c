// The graph of source folders that include each other, and a cycle in it.
#include "FolderGraph.h"

namespace kalvo::layering {

FolderGraph BuildFolderGraph(const QList<Include> &includes)
{
    FolderGraph graph;
    for (const Include &include : includes)
        if (include.quoted && include.to != include.from)
            graph[include.from].insert(include.to);
    return graph;
}

namespace {

// Depth-first search; a folder met again while still on the path closes a cycle.
class CycleSearch {
public:
    explicit CycleSearch(const FolderGraph &graph) : m_graph(graph) {}

    QStringList From(const QString &folder)
    {
        if (m_done.contains(folder))
            return {};
        if (const qsizetype at = m_path.indexOf(folder); at >= 0)
            return m_path.mid(at) << folder;
        m_path << folder;
        QStringList next(m_graph.value(folder).begin(), m_graph.value(folder).end());
        next.sort(); // the same cycle is reported on every run
        for (const QString &to : std::as_const(next))
            if (QStringList cycle = From(to); !cycle.isEmpty())
                return cycle;
        m_path.removeLast();
        m_done.insert(folder);
        return {};
    }

private:
    const FolderGraph &m_graph;
    QStringList m_path;
    QSet<QString> m_done;
};

} // namespace

QStringList FindCycle(const FolderGraph &graph)
{
    CycleSearch search(graph);
    for (auto it = graph.cbegin(); it != graph.cend(); ++it)
        if (QStringList cycle = search.From(it.key()); !cycle.isEmpty())
            return cycle;
    return {};
}

} // namespace kalvo::layering
