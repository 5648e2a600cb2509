// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/actions/DragData.h"

#include <QDir>
#include <QMimeData>
#include <QUrl>

namespace tomelet::desktop {

QMimeData *dragDataFor(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths) urls.append(QUrl::fromLocalFile(path));
    auto *data = new QMimeData;
    data->setUrls(urls);
    data->setText(paths.join(u'\n'));
    return data;
}

QStringList pathsIn(const QMimeData *data)
{
    QStringList paths;
    for (const QUrl &url : data->urls())
        if (url.isLocalFile()) paths.append(QDir::cleanPath(url.toLocalFile()));
    return paths;
}

} // namespace tomelet::desktop
