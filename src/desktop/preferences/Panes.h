// SPDX-License-Identifier: GPL-3.0-or-later
// The tabs of the preferences that are nothing but settings.
#pragma once

#include <functional>

class QWidget;

namespace tomelet::desktop {

[[nodiscard]] QWidget *makeGeneralPane(std::function<void()> appearanceChanged);
[[nodiscard]] QWidget *makeWritingPane();
[[nodiscard]] QWidget *makeMarkdownPane();
[[nodiscard]] QWidget *makeOrganisingPane();

} // namespace tomelet::desktop
