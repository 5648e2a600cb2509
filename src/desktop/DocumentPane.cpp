// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DocumentPane.h"

#include "conversion/Page.h"
#include "conversion/Patterns.h"
#include "desktop/ContextsField.h"
#include "desktop/ItemActions.h"
#include "desktop/PageProfile.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "organising/Contexts.h"
#include "organising/DocumentReferences.h"
#include "organising/LostTarget.h"

#include <QDesktopServices>
#include <QDir>
#include <QEvent>
#include <QHBoxLayout>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QMenu>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <QWebEnginePage>

#include <functional>

namespace tomelet::desktop {

namespace {

class Page final : public QWebEnginePage
{
public:
    Page(QObject *parent, std::function<void(const QUrl &)> follow)
        : QWebEnginePage(pageProfile(), parent)
        , m_follow(std::move(follow))
    {
    }

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override
    {
        if (type != NavigationTypeLinkClicked || !isMainFrame) return true;
        const bool sameDocument = url.adjusted(QUrl::RemoveFragment) == this->url().adjusted(QUrl::RemoveFragment);
        if (sameDocument) return true;
        m_follow(url);
        return false;
    }

private:
    std::function<void(const QUrl &)> m_follow;
};

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
    const QString canvas = QStringLiteral("<head>\n<style>:root { background-color: %1; }</style>")
                               .arg(palette.color(QPalette::Base).name());
    head.replace(head.indexOf(u"<head>"), 6, canvas);
    return head + html.mid(end);
}

QString displayPlace(const QString &path)
{
    const QString folder = tm_normalizedPath(parentPath(path));
    return folder.isEmpty() ? lastPathComponent(tomeletRoot()) : tm_pathFormattedForDisplay(folder);
}

} // namespace

DocumentPane::DocumentPane(ItemActions &actions, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
    , m_title(new QLabel)
    , m_place(new QLabel)
    , m_contexts(new ContextsField)
    , m_backlinks(new QToolButton)
    , m_empty(new QLabel(localized(TOMELET_TEXT("Select a document to read it here."))))
    , m_stack(new QStackedWidget)
    , m_view(new QWebEngineView)
{
    // The page waits for its answer, so what may ask a question comes after it.
    auto *page = new Page(m_view, [this](const QUrl &url) { QTimer::singleShot(0, this, [this, url] { followLink(url); }); });
    m_view->setPage(page);
    m_view->setAccessibleName(localized(TOMELET_TEXT("Document")));
    page->setBackgroundColor(palette().color(QPalette::Base));

    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setForegroundRole(QPalette::PlaceholderText);
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_view);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(makeHeader());
    layout->addWidget(m_stack, 1);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setFocusProxy(m_view);

    m_subscriptions.push_back(notifications().observe(
        QStringLiteral("TMLTFileModifiedOnDiskNotification"),
        [this](const QVariantMap &payload) { documentChanged(payload.value(QStringLiteral("path")).toString()); }));
    m_subscriptions.push_back(notifications().observe(QStringLiteral("TMLTReloadCurrentDocument"),
                                                      [this](const QVariantMap &) { documentChanged(m_path); }));
    m_subscriptions.push_back(notifications().observe(
        QStringLiteral("TMLTFileDeletedFromDiskNotification"), [this](const QVariantMap &payload) {
            if (payload.value(QStringLiteral("path")).toString() == m_path) showDocument({});
        }));
    m_subscriptions.push_back(
        notifications().observe(QStringLiteral("TMLTFileMovedNotification"), [this](const QVariantMap &payload) {
            documentMoved(payload.value(QStringLiteral("originalPath")).toString(),
                          payload.value(QStringLiteral("newPath")).toString());
        }));
}

DocumentPane::~DocumentPane() = default;

QLayout *DocumentPane::makeHeader()
{
    QFont font = m_title->font();
    font.setWeight(QFont::DemiBold);
    m_title->setFont(font);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_place->setForegroundRole(QPalette::PlaceholderText);
    m_backlinks->setPopupMode(QToolButton::InstantPopup);
    m_backlinks->setAutoRaise(true);
    m_backlinks->setMenu(new QMenu(m_backlinks));
    connect(m_backlinks->menu(), &QMenu::aboutToShow, this, &DocumentPane::fillBacklinksMenu);
    connect(m_contexts, &ContextsField::contextsEdited, this,
            [this](const QStringList &words) { m_actions.setContexts(m_path, words); });
    // The field's own undo would stand before that of the items.
    connect(m_contexts, &QLineEdit::returnPressed, m_view, qOverload<>(&QWidget::setFocus));

    auto *below = new QHBoxLayout;
    below->addWidget(m_contexts, 1);
    below->addWidget(m_backlinks);
    auto *header = new QVBoxLayout;
    header->setContentsMargins(20, 10, 20, 6);
    header->setSpacing(0);
    header->addWidget(m_title);
    header->addWidget(m_place);
    header->addLayout(below);
    return header;
}

void DocumentPane::showDocument(const QString &path, const QString &anchor)
{
    m_path = path;
    m_title->setText(path.isEmpty() ? QString() : lastPathComponent(path));
    m_place->setText(path.isEmpty() ? QString() : displayPlace(path));
    m_stack->setCurrentWidget(path.isEmpty() ? static_cast<QWidget *>(m_empty) : m_view);
    Q_EMIT titleChanged(m_title->text());
    showProperties();
    if (path.isEmpty()) return;
    load();
    if (!anchor.isEmpty()) scrollTo(anchor);
}

void DocumentPane::scrollTo(const QString &anchor)
{
    const QString name = percentDecoded(anchor.startsWith(u'#') ? anchor.mid(1) : anchor);
    const QByteArray json = QJsonDocument(QJsonArray{name}).toJson(QJsonDocument::Compact);
    const QString script = QStringLiteral("document.getElementById(%1[0])?.scrollIntoView()").arg(QString::fromUtf8(json));
    connect(m_view->page(), &QWebEnginePage::loadFinished, this,
            [this, script] { m_view->page()->runJavaScript(script, 1); }, Qt::SingleShotConnection);
}

void DocumentPane::showProperties()
{
    const bool own = !m_path.isEmpty() && tm_itemIsChildOfTomelet(m_path);
    m_contexts->setVisible(own && settings().boolean(QStringLiteral("contextsEnabled")));
    m_contexts->setContexts(own ? contextsOf(m_path) : QStringList());
    const qsizetype links = own ? tm_propertyForKey(m_path, QStringLiteral("Backlinks")).toStringList().size() : 0;
    m_backlinks->setVisible(links > 0);
    m_backlinks->setText(links == 1 ? localized(TOMELET_TEXT("Linked from one document"))
                                    : localized(TOMELET_TEXT("Linked from %1 documents")).arg(links));
}

void DocumentPane::fillBacklinksMenu()
{
    QMenu *menu = m_backlinks->menu();
    menu->clear();
    const QString root = tomeletRoot();
    for (const QString &path : tm_propertyForKey(m_path, QStringLiteral("Backlinks")).toStringList()) {
        const QString title = tm_pathFormattedForDisplay(path);
        QAction *action = menu->addAction(QString(title).replace(u'&', QStringLiteral("&&")));
        connect(action, &QAction::triggered, this, [full = fullPathOf(path, root)] {
            notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), full);
        });
    }
}

// A page that is given as text travels as a URL of at most 2 MB after escaping; longer ones go by way of a file.
static constexpr qsizetype longestTextPage = 500 * 1024;

void DocumentPane::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || !m_view->page()) return;
    m_view->page()->setBackgroundColor(palette().color(QPalette::Base));
    if (!m_path.isEmpty()) reload();
}

void DocumentPane::load()
{
    const QString extension = lowerExtension(m_path);
    static const QStringList shownAsTheyAre{QStringLiteral("html"), QStringLiteral("htm"), QStringLiteral("pdf")};
    if (shownAsTheyAre.contains(extension)) return m_view->load(QUrl::fromLocalFile(m_path));

    QString html = pageInScheme(pageForItem(m_path), palette());
    const QUrl base = QUrl::fromLocalFile(parentPath(m_path) + u'/');
    const QString element = QStringLiteral("<head>\n<base href=\"%1\">").arg(QString::fromLatin1(base.toEncoded()));
    const qsizetype head = html.indexOf(u"<head>");
    if (head >= 0) html.replace(head, 6, element);
    if (html.size() < longestTextPage) return m_view->setHtml(html, base);

    const QString folder = joinPath(workingDirectory(), QStringLiteral("pages"));
    makeFolder(folder);
    const QString file = joinPath(folder, QString::number(quintptr(this), 36) + QStringLiteral(".html"));
    if (writeFile(file, html.toUtf8())) m_view->load(QUrl::fromLocalFile(file));
}

void DocumentPane::documentChanged(const QString &path)
{
    if (m_path.isEmpty()) return;
    if (path == m_path) reload();
    if (path == m_path || path == propertyFileOf(m_path)) showProperties();
}

void DocumentPane::reload()
{
    const QPointF position = m_view->page()->scrollPosition();
    load();
    if (!position.isNull()) {
        // The page scrolls to where it was as soon as it is laid out again.
        connect(m_view->page(), &QWebEnginePage::loadFinished, this, [this, position] {
            m_view->page()->runJavaScript(
                QStringLiteral("window.scrollTo(%1, %2)").arg(position.x()).arg(position.y()), 1);
        }, Qt::SingleShotConnection);
    }
}

void DocumentPane::documentMoved(const QString &from, const QString &to)
{
    if (m_path == from) showDocument(to);
    else if (m_path.startsWith(from + u'/')) showDocument(to + m_path.mid(from.size()));
}

// The item of the notebook that an address means, with its anchor; "" for what lies outside.
static QString itemOfLink(const QUrl &url)
{
    const QString fragment = url.fragment();
    if (url.isLocalFile()) {
        const QString path = QDir::cleanPath(url.toLocalFile());
        if (tm_itemIsChildOfTomelet(path)) return tm_pathByAppendingAnchor(path, fragment);
        // "/Book/Note.md" begins at the root, unless the disk has just that.
        return itemExists(path) ? QString() : tm_pathByAppendingAnchor(fullPathOf(path), fragment);
    }
    const QString text = url.toString(QUrl::FullyDecoded);
    if (url.scheme() != u"tomelet" || tm_isTomeletURLSchemeAction(text)) return {};
    return QDir::cleanPath(fullPathOf(withoutTomeletScheme(text)));
}

void DocumentPane::followLink(const QUrl &url)
{
    QString path = itemOfLink(url);
    if (path.isEmpty()) {
        QDesktopServices::openUrl(url);
        return;
    }
    if (!itemExists(tm_pathWithoutAnchor(path)) && !itemExists(path))
        path = tm_findAlternativePathExcludingOrPrompt(path, {m_path}, m_path);
    if (!path.isEmpty()) notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), path);
}

} // namespace tomelet::desktop
