// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/urls/ServiceProvider.h"

#include "conversion/TextUtilities.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/urls/FromOutside.h"

namespace tomelet {

using namespace std::chrono_literals;

static QString save(const QString &named, const QString &text)
{
    if (text.trimmed().isEmpty()) return {};
    const QString line = nameFromOutside(named);
    const QString name = line.isEmpty() ? localized(TOMELET_TEXT("Untitled")) : line;
    const QString inbox = settings().string(QStringLiteral("defaultInbox"));
    return writeFromOutside(name + QStringLiteral(".txt"), bookFromOutside(inbox), text.toUtf8());
}

void TMLTServiceProvider::addQuickNote()
{
    platform().delayedCalls.schedule(QStringLiteral("addQuickNote"), {}, 200ms, [this] { m_shell.openQuickNote(); });
}

QString TMLTServiceProvider::addSelection(const SelectedText &selection)
{
    const QString formatted = selection.html.isEmpty() ? QString() : tm_htmlToPlainQuick(selection.html);
    return save(selection.plain, formatted.trimmed().isEmpty() ? selection.plain : formatted);
}

QString TMLTServiceProvider::addSelectionPlain(const SelectedText &selection)
{
    return save(selection.plain, selection.plain);
}

bool TMLTServiceProvider::insertIntoCurrentDocument(const SelectedText &selection)
{
    return !selection.plain.isEmpty() && m_shell.insertIntoFrontmostDocument(selection.plain);
}

} // namespace tomelet
