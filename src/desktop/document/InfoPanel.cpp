// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/InfoPanel.h"

#include "conversion/TextUtilities.h"
#include "desktop/actions/TaskActions.h"
#include "desktop/list/DocumentListModel.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "library/TextFile.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/dates/DueDateTexts.h"
#include "organising/dates/RepeatRule.h"
#include "organising/links/DocumentReferences.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/Tasks.h"

#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QTimer>
#include <QVBoxLayout>

namespace tomelet::desktop {

using namespace std::chrono_literals;

namespace {

const QString dueDateLink = QStringLiteral("due-date");
const QString noAlertLink = QStringLiteral("no-alert");
const QString noDueDateLink = QStringLiteral("no-due-date");

constexpr auto pathRole = Qt::UserRole;

// Words of a longer document are not worth the wait for a panel.
constexpr qint64 longestCounted = 4 * 1024 * 1024;

QListWidget *makeList(const QString &name, QVBoxLayout *layout)
{
    auto *heading = new QLabel(name);
    QFont font = heading->font();
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    auto *list = new QListWidget;
    list->setAccessibleName(name);
    list->setFrameShape(QFrame::NoFrame);
    heading->setBuddy(list);
    QObject::connect(list, &QListWidget::itemActivated, [](const QListWidgetItem *item) {
        notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), item->data(pathRole).toString());
    });
    layout->addWidget(heading);
    layout->addWidget(list, 1);
    return list;
}

void fillList(QListWidget *list, const QStringList &paths)
{
    list->clear();
    const QString root = tomeletRoot();
    for (const QString &path : paths) {
        auto *item = new QListWidgetItem(tm_pathFormattedForDisplay(path), list);
        item->setData(pathRole, fullPathOf(path, root));
        item->setToolTip(path);
    }
}

QString row(const QString &name, const QString &value)
{
    return QStringLiteral("<tr><td style='padding-right:12px'>%1</td><td>%2</td></tr>")
        .arg(name, value.toHtmlEscaped());
}

QString textOf(const QString &path)
{
    if (!canHoldReferences(path) && !hasPlainTextExtension(path)) return {};
    const auto decoded = readTextFile(path);
    if (!decoded) return {};
    return lowerExtension(path) == u"html" ? tm_htmlToPlainText(decoded->text) : decoded->text;
}

QString factsOf(const QString &path)
{
    const QFileInfo file(path);
    const QLocale locale;
    QString rows = row(localized(TOMELET_TEXT("Created")),
                       locale.toString(tm_creationDate(path).toLocalTime(), QLocale::ShortFormat)) +
                   row(localized(TOMELET_TEXT("Changed")), locale.toString(file.lastModified(), QLocale::ShortFormat)) +
                   row(localized(TOMELET_TEXT("Size")), locale.formattedDataSize(file.size()));
    const QString text = file.isFile() && file.size() <= longestCounted ? textOf(path) : QString();
    if (!text.isEmpty())
        rows += row(localized(TOMELET_TEXT("Words")), locale.toString(tm_wordCount(text))) +
                row(localized(TOMELET_TEXT("Characters")), locale.toString(text.size()));
    return QStringLiteral("<table>%1</table>").arg(rows);
}

QString link(const QString &target, const char *text)
{
    return QStringLiteral("<a href='%1'>%2</a>").arg(target, localized(text).toHtmlEscaped());
}

// The task with its commands; "" for what is none.
QString taskOf(const QString &path)
{
    const QString icon = tm_iconForTask(path);
    if (icon.isEmpty()) return {};
    QString rows = row(localized(TOMELET_TEXT("Task")), taskStateText(icon));
    QStringList commands{link(dueDateLink, TOMELET_TEXT("Due Date..."))};
    if (tm_taskIsDoneOrCanceled(icon))
        rows += row(localized(TOMELET_TEXT("Finished")), tm_fancyWeekdayString(tm_doneDateForTask(path)));
    if (hasDueDate(path)) {
        const QDateTime due = tm_dueDateForTask(path);
        rows += row(localized(TOMELET_TEXT("Due")), tm_weekdayStringWithOffset(due));
        if (tm_dueDateHasAlertTime(due)) commands.append(link(noAlertLink, TOMELET_TEXT("Clear Alert")));
        commands.append(link(noDueDateLink, TOMELET_TEXT("Clear Due Date")));
    }
    if (const auto details = tm_repeatDetails(path))
        rows += row(localized(TOMELET_TEXT("Repeat")), tm_readableRepeatDetailsForDetails(*details).trimmed());
    return QStringLiteral("<table>%1</table><p>%2</p>").arg(rows, commands.join(QStringLiteral(" · ")));
}

} // namespace

InfoPanel::InfoPanel(QWidget *parent)
    : QDockWidget(localized(TOMELET_TEXT("Info")), parent)
    , m_soon(new QTimer(this))
    , m_facts(new QLabel)
    , m_task(new QLabel)
{
    m_soon->setSingleShot(true);
    m_soon->setInterval(150ms);
    connect(m_soon, &QTimer::timeout, this, &InfoPanel::fill);
    setObjectName(QStringLiteral("InfoPanel"));
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    m_facts->setTextFormat(Qt::RichText);
    m_facts->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_facts);
    m_task->setTextFormat(Qt::RichText);
    m_task->setWordWrap(true);
    m_task->setTextInteractionFlags(Qt::TextBrowserInteraction);
    connect(m_task, &QLabel::linkActivated, this, &InfoPanel::follow);
    layout->addWidget(m_task);
    m_links = makeList(localized(TOMELET_TEXT("Links to")), layout);
    m_backlinks = makeList(localized(TOMELET_TEXT("Linked from")), layout);
    content->setMinimumWidth(220);
    setWidget(content);
    m_subscriptions.push_back(notifications().observe(
        QStringLiteral("TMLTFileModifiedOnDiskNotification"), [this](const QVariantMap &payload) {
            const QString changed = payload.value(QStringLiteral("path")).toString();
            const bool ownStore = tm_pathIsTaskPlist(changed) && parentPath(changed) == parentPath(m_path);
            if (!m_path.isEmpty() && (changed == m_path || changed == propertyFileOf(m_path) || ownStore))
                m_soon->start();
        }));
}

void InfoPanel::setDocument(const QString &path)
{
    m_path = path;
    m_soon->start();
}

void InfoPanel::follow(const QString &link)
{
    if (link == dueDateLink) Q_EMIT dueDateWanted(m_path);
    if (link == noAlertLink) Q_EMIT noAlertWanted(m_path);
    if (link == noDueDateLink) Q_EMIT noDueDateWanted(m_path);
}

void InfoPanel::showEvent(QShowEvent *event)
{
    QDockWidget::showEvent(event);
    m_soon->start();
}

void InfoPanel::fill()
{
    if (!isVisible()) return;
    m_facts->setText(m_path.isEmpty() ? QString() : factsOf(m_path));
    const QString task = m_path.isEmpty() ? QString() : taskOf(m_path);
    m_task->setText(task);
    m_task->setVisible(!task.isEmpty());
    const bool readable = !m_path.isEmpty() && canHoldReferences(m_path);
    fillList(m_links, readable ? tm_verifiedArrayOfReferencedDocuments(m_path) : QStringList());
    fillList(m_backlinks,
             m_path.isEmpty() ? QStringList() : tm_propertyForKey(m_path, QStringLiteral("Backlinks")).toStringList());
}

} // namespace tomelet::desktop
