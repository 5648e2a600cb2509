// SPDX-License-Identifier: GPL-3.0-or-later
// Texts that people read, in the language of their locale.
#pragma once

#include <QCoreApplication>
#include <QString>

/// Marks a text for the translators and leaves it as it is.
#define TOMELET_TEXT(text) QT_TRANSLATE_NOOP("tomelet", text)

namespace tomelet {

/// The text in the language in force, or itself. `text` is the English original, written with TOMELET_TEXT.
[[nodiscard]] inline QString localized(const char *text)
{
    return QCoreApplication::translate("tomelet", text);
}

} // namespace tomelet
