// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/ProgressPanel.h"

#include "foundation/Localization.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProgressDialog>

namespace tomelet::desktop {

bool runWithProgress(QWidget *parent, const QString &title, const std::function<void(const Progress &)> &work)
{
    QProgressDialog panel(title, localized(TOMELET_TEXT("Stop")), 0, 0, parent);
    panel.setWindowTitle(title);
    panel.setWindowModality(Qt::WindowModal);
    panel.setMinimumWidth(420);
    panel.setMinimumDuration(300);
    panel.setAutoClose(false);
    panel.setAutoReset(false);
    QElapsedTimer sincePaint;
    sincePaint.start();
    work([&](qsizetype done, qsizetype all) {
        // Every item would cost more for the bar than for the work.
        if (sincePaint.elapsed() < 30 && done != all) return true;
        sincePaint.restart();
        panel.setMaximum(static_cast<int>(all));
        panel.setValue(static_cast<int>(done));
        QCoreApplication::processEvents();
        return !panel.wasCanceled();
    });
    return !panel.wasCanceled();
}

} // namespace tomelet::desktop
