// SPDX-License-Identifier: GPL-3.0-or-later
// Many replacements in one text, made in one go: what the reverse-order rewrite comes to, without moving the text's
// tail once a match.
#pragma once

#include "foundation/Range.h"

#include <QString>

#include <vector>

namespace tomelet {

class Edits
{
public:
    /// Replaces a range of the original text. Ranges are given from the last to the first and do not overlap.
    void replace(Range range, const QString &replacement) { m_edits.push_back({range, replacement}); }
    [[nodiscard]] bool isEmpty() const { return m_edits.empty(); }
    [[nodiscard]] QString appliedTo(const QString &text) const;

private:
    struct Edit
    {
        Range range;
        QString replacement;
    };
    std::vector<Edit> m_edits;
};

} // namespace tomelet
