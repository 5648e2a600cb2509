// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/BackList.h"

#include "foundation/Folder.h"

namespace tomelet {

static constexpr qsizetype longest = 200;

void BackList::visit(const QString &path)
{
    if (path.isEmpty() || m_paths.value(m_at) == path) return;
    m_paths.resize(m_at + 1);
    if (m_paths.size() == longest) m_paths.removeFirst();
    m_paths.append(path);
    m_at = m_paths.size() - 1;
}

void BackList::follow(const QString &from, const QString &to)
{
    for (QString &path : m_paths)
        if (path == from || path.startsWith(from + u'/')) path = to + path.mid(from.size());
    // Who renamed it may have visited it by its new name already.
    for (qsizetype i = m_paths.size() - 1; i > 0; --i) {
        if (m_paths[i] != m_paths[i - 1]) continue;
        m_paths.removeAt(i);
        if (m_at >= i) --m_at;
    }
}

QString BackList::go(int step)
{
    const QString present = m_paths.value(m_at);
    for (qsizetype at = m_at + step; at >= 0 && at < m_paths.size(); at += step) {
        if (m_paths[at] == present || !itemExists(m_paths[at])) continue;
        m_at = at;
        return m_paths[at];
    }
    return {};
}

} // namespace tomelet
