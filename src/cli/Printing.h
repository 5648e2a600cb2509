// SPDX-License-Identifier: GPL-3.0-or-later
// Pages as PDF, by the program that has a web engine.
#pragma once

#include <QByteArray>
#include <QString>

namespace tomelet::cli {

struct PrintedPage
{
    QByteArray pdf;
    QString error; ///< "" when it is printed
};

/// Prints a complete page. `folder` is what its relative addresses begin at.
[[nodiscard]] PrintedPage printPage(const QByteArray &page, const QString &folder);

} // namespace tomelet::cli
