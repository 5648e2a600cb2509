// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/op/Registry.h"

#include <algorithm>
#include <numeric>

namespace tomelet::cli {

bool Registry::contains(const QString &name) const
{
    return std::ranges::any_of(m_operations, [&](const Operation &operation) { return operation.name == name; });
}

const Operation *Registry::find(const QString &name, qsizetype arguments) const
{
    const Operation *best = nullptr;
    for (const Operation &operation : m_operations) {
        if (operation.name != name) continue;
        const qsizetype count = operation.parameters.size();
        if (count == arguments) return &operation;
        const qsizetype bestCount = best ? best->parameters.size() : -1;
        const bool fits = count > arguments;
        const bool bestFits = bestCount > arguments;
        // The shortest that takes them all, else the longest there is.
        if (!best || (fits && (!bestFits || count < bestCount)) || (!fits && !bestFits && count > bestCount))
            best = &operation;
    }
    return best;
}

// Levenshtein's distance, one row at a time.
static qsizetype distance(const QString &a, const QString &b)
{
    std::vector<qsizetype> row(size_t(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        qsizetype diagonal = row[0];
        row[0] = i;
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const qsizetype change = diagonal + (a[i - 1].toLower() == b[j - 1].toLower() ? 0 : 1);
            diagonal = row[size_t(j)];
            row[size_t(j)] = std::min({change, diagonal + 1, row[size_t(j) - 1] + 1});
        }
    }
    return row.back();
}

QStringList Registry::nearest(const QString &name) const
{
    QStringList names;
    for (const Operation &operation : m_operations)
        if (!names.contains(operation.name)) names.append(operation.name);
    std::ranges::stable_sort(names, {}, [&](const QString &candidate) { return distance(name, candidate); });
    return names.mid(0, 5);
}

void Registry::addOperation(Operation operation)
{
    m_operations.append(std::move(operation));
}

const Registry &registry()
{
    static const Registry all = [] {
        Registry made;
        addFoundationOperations(made);
        addConversionOperations(made);
        addLibraryOperations(made);
        addPageOperations(made);
        addOrganisingOperations(made);
        addEditorOperations(made);
        addScreenplayOperations(made);
        addTaskOperations(made);
        return made;
    }();
    return all;
}

} // namespace tomelet::cli
