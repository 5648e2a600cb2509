// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Items.h"

#include "cli/Invocation.h"
#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/SetUp.h"
#include "organising/NotebookOrganiser.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <unistd.h>

namespace tomelet::cli {

static QString pathOfUrl(const QString &url, const QString &root)
{
    const QString path = fullPathOf(tm_pathFromTomeletURLScheme(url), root);
    return itemExists(path) ? path : percentDecoded(path);
}

QString itemPath(const QString &argument)
{
    const QString root = tomeletRoot();
    QString path = argument;
    while (path.size() > 1 && path.endsWith(u'/')) path.chop(1);
    if (path.isEmpty() || path == u"/" || path == u".") return root;
    if (path.startsWith(u"tomelet://")) return pathOfUrl(path, root);
    if (!path.startsWith(u'/')) return joinPath(root, path);
    if (path == root || (!root.isEmpty() && path.startsWith(root + u'/'))) return path;
    const QString normalized = joinPath(root, path);
    if (itemExists(normalized)) return normalized;
    return itemExists(path) ? path : normalized;
}

// Asks at the terminal; without one, the safe answer is taken, which is always the last.
static int askAtTerminal(const Question &question)
{
    const int safe = int(question.buttons.size()) - 1;
    if (!::isatty(STDIN_FILENO) || !::isatty(STDERR_FILENO)) return safe;
    QTextStream out(stderr);
    QTextStream in(stdin);
    out << question.title << '\n' << question.text << '\n';
    for (qsizetype i = 0; i < question.buttons.size(); ++i) out << "  " << i + 1 << ") " << question.buttons[i] << '\n';
    out << "> " << Qt::flush;
    bool ok = false;
    const int choice = in.readLine().toInt(&ok);
    return ok && choice >= 1 && choice <= question.buttons.size() ? choice - 1 : safe;
}

void takeOptions(const Invocation &call)
{
    Platform &now = platform();
    if (!call.root.isEmpty()) now.rootOverride = QDir(call.root).absolutePath();
    if (call.answer)
        now.ask = [yes = *call.answer](const Question &question) { return yes ? 0 : int(question.buttons.size()) - 1; };
    else now.ask = askAtTerminal;
    startDiagnosticLog(false);
    installNotebookOrganiser();
}

std::optional<int> openNotebook(const Invocation &call)
{
    takeOptions(call);
    const QString root = tomeletRoot();
    if (root.isEmpty()) return fail(QStringLiteral("no notebook is chosen yet: tomelet root DIR chooses one"));
    if (!isFolder(root)) return fail(QStringLiteral("the notebook %1 cannot be found").arg(root));
    return std::nullopt;
}

QVariant propertyFromText(const QString &key, const QVariant &value)
{
    const bool holdsDate = key == u"CreationDate" || key == u"Print" || key == u"Mail";
    if (!holdsDate || value.typeId() != QMetaType::QString) return value;
    const QDateTime date = dateFromIso(value.toString());
    return date.isValid() ? QVariant(date) : value;
}

} // namespace tomelet::cli
