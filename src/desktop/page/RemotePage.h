// SPDX-License-Identifier: GPL-3.0-or-later
// The page behind a web address that the notebook holds. It shows what the web gives, and reaches nothing of the
// person's: no scripts, no files, no forms that send something, no links into the notebook.
#pragma once

#include "desktop/page/LinkPage.h"

namespace tomelet::desktop {

class RemotePage final : public LinkPage
{
public:
    /// Links to the web, and to mail addresses, are told to `follow`; no others are.
    RemotePage(QObject *parent, const LinkFollower &follow);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
};

} // namespace tomelet::desktop
