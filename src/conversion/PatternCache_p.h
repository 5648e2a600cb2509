// SPDX-License-Identifier: GPL-3.0-or-later
// The compiled patterns of the conversion steps. There are more of them than the regular-expression layer's
// table holds, and conversions run side by side, so each use works on a clone and no lock is held while a
// pattern runs.
#pragma once

#include "conversion/RegexMatcher_p.h"

#include <QHash>
#include <QString>

#include <mutex>

namespace tomelet {

class PatternCache
{
public:
    /// A clone of the pattern, compiled with ICU's flags at its first use; null for what does not compile.
    [[nodiscard]] OwnedRegex regex(const QString &pattern, quint32 icuOptions);

    /// For tests: how often a pattern was compiled.
    [[nodiscard]] quint64 compileCount() const { return m_compileCount; }

private:
    using Key = std::pair<QString, quint32>;

    std::mutex m_mutex;
    QHash<Key, std::shared_ptr<URegularExpression>> m_compiled;
    quint64 m_compileCount = 0;
};

/// The one cache of the process.
[[nodiscard]] PatternCache &patternCache();

} // namespace tomelet
