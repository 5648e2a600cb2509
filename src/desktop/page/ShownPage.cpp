// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/ShownPage.h"

#include "conversion/Patterns.h"
#include "desktop/page/FormattingCommands.h"
#include "editor/PageBody.h"
#include "foundation/Folder.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"

namespace tomelet::desktop {

namespace {

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

// The engine takes its scheme from the desktop at start and cannot be told another one per page, so the question for
// it is answered in the style sheets of the page's own head.
QString pageInScheme(const QString &html, const QPalette &palette)
{
    const bool dark = isDark(palette);
    const qsizetype end = html.indexOf(u"</head>");
    if (end < 0 || html.left(end).indexOf(u"<head>") < 0) return html;
    QString head = html.left(end);
    const QString yes = QStringLiteral("all");
    const QString no = QStringLiteral("not all");
    const QString question = QStringLiteral("\\(\\s*prefers-color-scheme\\s*:\\s*%1\\s*\\)");
    head = regexSweep(head, question.arg(QStringLiteral("dark")), dark ? yes : no);
    head = regexSweep(head, question.arg(QStringLiteral("light")), dark ? no : yes);
    head = regexSweep(head, QStringLiteral("color-scheme\\s*:\\s*light\\s+dark"),
                      dark ? QStringLiteral("color-scheme: dark") : QStringLiteral("color-scheme: light"));
    // The canvas of a dark page has a colour of its own otherwise; a sheet of the document's goes before this.
    const QString canvas = QStringLiteral("<head>\n<style>html { background-color: %1; }</style>")
                               .arg(palette.color(QPalette::Base).name());
    head.replace(head.indexOf(u"<head>"), 6, canvas);
    return head + html.mid(end);
}

// The rule that longpage.js takes back; the first screens are laid out at once.
const QString longPageRule =
    QStringLiteral("<style id=\"tm_long_page\">body > :nth-child(n+41) "
                   "{ content-visibility: auto; contain-intrinsic-size: auto 4em; }</style>\n</head>");

} // namespace

QUrl addressOf(const QString &base)
{
    if (!base.startsWith(u'/')) return QUrl(base);
    return QUrl::fromLocalFile((isFolder(base) ? base : parentPath(base)) + u'/');
}

QString pageToShow(const QString &html, const QUrl &address, const QPalette &palette)
{
    QString page = pageInScheme(html, palette);
    const qsizetype head = page.indexOf(u"<head>");
    if (head >= 0)
        page.replace(head, 6,
                     QStringLiteral("<head>\n<base href=\"%1\">").arg(QString::fromLatin1(address.toEncoded())));
    return page;
}

QString withLongPageRule(QString page)
{
    const qsizetype end = page.indexOf(u"</head>");
    return end < 0 ? page : page.replace(end, 7, longPageRule);
}

QString longPageScript()
{
    static const QString script =
        QString::fromUtf8(readFile(resourcePath(QStringLiteral("editor/longpage.js"))).value_or(QByteArray()));
    return script;
}

QString scriptForContent(const QString &page, bool keepsPlace)
{
    return QStringLiteral("{ const page = new DOMParser().parseFromString('%1', 'text/html');"
                          "if (document.head.innerHTML !== page.head.innerHTML)"
                          " document.head.innerHTML = page.head.innerHTML;"
                          "document.body.replaceWith(page.body); %2 }")
        .arg(escapedForScript(page), keepsPlace ? QString() : QStringLiteral("window.scrollTo(0, 0);"));
}

QString lookOf(const QString &page)
{
    return regexSweep(headOfPage(page), QStringLiteral("(?s)<title>.*?</title>"), {});
}

} // namespace tomelet::desktop
