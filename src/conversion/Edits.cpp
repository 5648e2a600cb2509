// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Edits.h"

namespace tomelet {

QString Edits::appliedTo(const QString &text) const
{
    if (m_edits.empty()) return text;
    QString result;
    result.reserve(text.size() + text.size() / 8);
    qsizetype from = 0;
    for (auto edit = m_edits.rbegin(); edit != m_edits.rend(); ++edit) {
        result.append(QStringView(text).sliced(from, edit->range.location - from));
        result.append(edit->replacement);
        from = edit->range.end();
    }
    result.append(QStringView(text).sliced(from));
    return result;
}

} // namespace tomelet
