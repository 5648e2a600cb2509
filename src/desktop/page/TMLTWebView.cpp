// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/TMLTWebView.h"

#include "desktop/page/FormattingCommands.h"
#include "foundation/Log.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"

#include <QEventLoop>
#include <QPointer>
#include <QWebEnginePage>

namespace tomelet::desktop {

namespace {

constexpr int inputDelay = 40;  // milliseconds; the page has a key by then
constexpr int watchDelay = 500; // between looks that no input asked for
constexpr int longestWait = 2000;

QString scriptFile(const QString &name)
{
    return QString::fromUtf8(readFile(resourcePath(QStringLiteral("editor/") + name)).value_or(QByteArray()));
}

QString boxesScript()
{
    static const QString script = scriptFile(QStringLiteral("boxes.js"));
    return script;
}

QString editingScript()
{
    static const QString script = [] {
        QString all = boxesScript();
        for (const char *name : {"selecting.js", "lists.js", "tables.js", "replacing.js", "history.js", "editing.js"})
            all += scriptFile(QString::fromLatin1(name));
        return all;
    }();
    return script;
}

} // namespace

TMLTWebView::TMLTWebView(QWidget *parent)
    : QWebEngineView(parent)
{
    m_afterInput.setSingleShot(true);
    m_afterInput.setInterval(inputDelay);
    m_watch.setInterval(watchDelay);
    for (QTimer *timer : {&m_afterInput, &m_watch})
        connect(timer, &QTimer::timeout, this, [this] { ask(QStringLiteral("tm.report()")); });
    connect(this, &QWebEngineView::loadFinished, this, &TMLTWebView::loaded);
}

// -- the page ---------------------------------------------------------------------------------------------------------

void TMLTWebView::expectPage(bool mayBeEdited)
{
    endEditing();
    ++m_page;
    m_mayBeEdited = mayBeEdited;
    m_ready = m_beginsWhenReady = m_hasSteps = false;
    m_parts.clear();
    m_html = m_text = QString();
    m_paragraph.clear();
    m_selected.clear();
}

void TMLTWebView::loaded(bool fine)
{
    if (fine && m_mayBeEdited && !m_ready) start(editingScript() + QStringLiteral("tm.start()"));
}

void TMLTWebView::takePage(const QString &page)
{
    start(QStringLiteral("tm.take('%1')").arg(escapedForScript(page)));
}

void TMLTWebView::start(const QString &script)
{
    const auto take = [this, number = m_page](const QVariant &answer) {
        if (m_page != number || m_ready) return;
        const QVariantMap start = answer.toMap();
        if (!start.contains(QStringLiteral("html"))) return;
        m_parts.clear();
        m_html = start.value(QStringLiteral("html")).toString();
        m_text = start.value(QStringLiteral("text")).toString();
        m_hasSteps = start.value(QStringLiteral("hasSteps")).toBool();
        m_ready = true;
        Q_EMIT ready();
        if (m_beginsWhenReady) Q_EMIT editingWanted(false);
    };
    page()->runJavaScript(script, editorWorld, m_life.guard(take));
}

void TMLTWebView::readText()
{
    const auto take = [this, number = m_page](const QVariant &text) {
        if (m_page != number || !m_ready || !m_parts.isEmpty()) return;
        m_text = text.toString();
        Q_EMIT ready();
    };
    page()->runJavaScript(QStringLiteral("window.tm?.text()"), editorWorld, m_life.guard(take));
}

void TMLTWebView::beginEditing(bool keepsContentsTable)
{
    m_beginsWhenReady = !m_ready;
    if (!m_ready) return;
    m_editing = true;
    m_watch.start();
    ask(keepsContentsTable ? QStringLiteral("tm.begin(true)") : QStringLiteral("tm.begin(false)"));
}

void TMLTWebView::endEditing()
{
    m_editing = false;
    m_afterInput.stop();
    m_watch.stop();
}

void TMLTWebView::ask(const QString &script, std::function<void()> then)
{
    if (!m_editing) return;
    page()->runJavaScript(script, editorWorld,
                          m_life.guard([this, number = m_page, then = std::move(then)](const QVariant &answer) {
                              if (m_page == number) take(answer.toMap());
                              if (then) then();
                          }));
}

// A script that failed answers nothing, and nothing happened.
void TMLTWebView::take(const QVariantMap &answer)
{
    if (!m_editing || !answer.contains(QStringLiteral("changes"))) return;
    m_paragraph = answer.value(QStringLiteral("paragraph")).toString();
    m_selected = answer.value(QStringLiteral("selected")).toString();
    Q_EMIT stateChanged(
        {answer.value(QStringLiteral("block")).toString(), answer.value(QStringLiteral("list")).toString(),
         answer.value(QStringLiteral("state")).toMap(), answer.value(QStringLiteral("marked")).toBool(),
         answer.value(QStringLiteral("inTable")).toBool(), answer.value(QStringLiteral("contents")).toBool()});
    const QVariantMap changes = answer.value(QStringLiteral("changes")).toMap();
    if (changes.isEmpty()) return;
    takeChanges(changes);
    Q_EMIT edited();
}

void TMLTWebView::takeChanges(const QVariantMap &changes)
{
    if (changes.value(QStringLiteral("known")).toInt() == 0) m_parts.clear();
    const auto at = changes.value(QStringLiteral("from")).toInt();
    QList<PagePart> parts = m_parts.first(at);
    for (const QVariant &added : changes.value(QStringLiteral("added")).toList()) {
        const QVariantList part = added.toList();
        parts.append({part[0].toString(), part[1].toString(), part[2].toInt()});
    }
    m_parts = parts + m_parts.sliced(at + changes.value(QStringLiteral("removed")).toInt());
    m_html = m_text = QString();
}

const QString &TMLTWebView::innerHTML() const
{
    if (m_html.isNull() && !m_parts.isEmpty()) m_html = htmlOfParts(m_parts);
    return m_html;
}

const QString &TMLTWebView::innerText() const
{
    if (m_text.isNull() && !m_parts.isEmpty()) m_text = textOfParts(m_parts);
    return m_text;
}

void TMLTWebView::run(const QString &script)
{
    ask(QStringLiteral("tm.run(() => { %1 })").arg(script));
}

void TMLTWebView::restyle(const QString &head)
{
    page()->runJavaScript(QStringLiteral("tm.restyle('%1')").arg(escapedForScript(head)), editorWorld);
}

// Keys travel another way than scripts, so the page gets a moment to receive the last one before it is asked.
void TMLTWebView::waitForPage()
{
    if (!m_editing || m_waiting) return;
    m_waiting = true;
    QEventLoop loop;
    bool answered = false;
    QTimer::singleShot(longestWait, &loop, &QEventLoop::quit);
    QTimer::singleShot(m_afterInput.isActive() ? inputDelay : 0, &loop, [&] {
        ask(QStringLiteral("tm.report()"), [&answered, target = QPointer(&loop)] {
            if (!target) return;
            answered = true;
            target->quit();
        });
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
    m_waiting = false;
    if (!answered) logLine(QStringLiteral("the page does not answer"));
}

void TMLTWebView::lookForBox(const QString &place)
{
    page()->runJavaScript(boxesScript() + QStringLiteral("tmBoxes.told") + place, editorWorld,
                          m_life.guard([this, number = m_page](const QVariant &answer) {
                              const QVariantMap box = answer.toMap();
                              if (m_page != number || box.isEmpty()) return;
                              Q_EMIT boxClicked({box.value(QStringLiteral("number")).toLongLong(),
                                                 box.value(QStringLiteral("count")).toLongLong(),
                                                 box.value(QStringLiteral("done")).toBool()});
                          }));
}

} // namespace tomelet::desktop
