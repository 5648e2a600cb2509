// SPDX-License-Identifier: GPL-3.0-or-later
// The documents that were on display one after the other, as a browser has its pages.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

class BackList
{
public:
    /// The document is on display now. What lay ahead is forgotten, unless it is the document that one went to.
    void visit(const QString &path);
    /// A document, or a folder above some, has moved.
    void follow(const QString &from, const QString &to);
    /// Goes to the next document in one direction that is still there and gives its path; "" when there is none.
    [[nodiscard]] QString back() { return go(-1); }
    [[nodiscard]] QString forward() { return go(1); }

private:
    QString go(int step);

    QStringList m_paths;
    qsizetype m_at = -1; ///< the one on display
};

} // namespace tomelet
