// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: what happens elsewhere while a document is on the screen.
#include "editor/TMLTDocumentViewController.h"

#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/EmbeddedPhotos.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "library/TextFile.h"

#include <QFileInfo>

namespace tomelet {

using namespace std::chrono_literals;

namespace {

bool isBelow(const QString &path, const QString &folder)
{
    return path.startsWith(folder + u'/');
}

// Sound, films and pictures, whose pages hold nothing but them.
bool isMedium(const QString &path)
{
    static const QStringList media{QStringLiteral("m4a"),  QStringLiteral("mp3"), QStringLiteral("aac"),
                                   QStringLiteral("aiff"), QStringLiteral("m4v"), QStringLiteral("mp4"),
                                   QStringLiteral("mov"),  QStringLiteral("wav"), QStringLiteral("mpg")};
    return hasImageExtension(path) || media.contains(lowerExtension(path));
}

} // namespace

void TMLTDocumentViewController::observe()
{
    const auto add = [this](const char *name, NotificationCenter::Observer observer) {
        m_subscriptions.push_back(notifications().observe(QString::fromLatin1(name), std::move(observer)));
    };
    const auto text = [](const QVariantMap &payload, const char *key) {
        return payload.value(QString::fromLatin1(key)).toString();
    };
    add("TMLTFileModifiedOnDiskNotification",
        [this, text](const QVariantMap &payload) { checkIfDocumentNeedsReload(text(payload, "path")); });
    add("TMLTReloadCurrentDocument", [this](const QVariantMap &) { reloadCurrentDocument(); });
    add("TMLTSaveCurrentDocument", [this](const QVariantMap &) { writeTextToFile(); });
    add("TMLTFileMovedNotification", [this, text](const QVariantMap &payload) {
        documentMoved(text(payload, "originalPath"), text(payload, "newPath"), text(payload, "silentReload") == u"1");
    });
    // A text that was typed on is kept on the screen and makes its file anew when it is saved.
    add("TMLTFileDeletedFromDiskNotification", [this, text](const QVariantMap &payload) {
        const QString gone = text(payload, "path");
        const bool isOurs = !m_path.isEmpty() && (gone == m_path || isBelow(m_path, gone));
        if (!isOurs || m_isEdited || itemExists(m_path)) return;
        m_path.clear();
        showDocument();
    });
}

// -- change on disk ---------------------------------------------------------------------------------------------------

bool TMLTDocumentViewController::isStyleChange(const QString &changedPath) const
{
    const bool ofBook =
        lastPathComponent(changedPath) == u"BookProperties.plist" && isBelow(m_path, tomelet::parentPath(changedPath));
    return (ofBook || changedPath == tm_plistPath(m_path)) && relevantInheritedPropertyDidChange();
}

// Another date alone is no other text: a synced file is touched without being changed.
bool TMLTDocumentViewController::fileWasReplaced()
{
    static constexpr qint64 tolerance = 500;
    const auto stamp = fileStamp(m_path);
    if (!stamp || stamp == m_stampOfPresentedDocument) return false;
    const QDateTime date = QFileInfo(m_path).lastModified();
    if (m_md5OfFile.isEmpty()) return std::abs(m_modDateOfPresentedDocument.msecsTo(date)) > tolerance;
    const auto bytes = readFile(m_path);
    if (!bytes) return false;
    m_modDateOfPresentedDocument = date;
    m_stampOfPresentedDocument = stamp;
    return md5OfBytes(*bytes) != m_md5OfFile;
}

void TMLTDocumentViewController::checkIfDocumentNeedsReload(const QString &changedPath)
{
    if (m_path.isEmpty()) return;
    if (isBelow(changedPath, imagesFolderBeside(m_path))) return pictureChanged(changedPath);
    const bool style = isStyleChange(changedPath);
    if (!style && changedPath != m_path) return;
    if (fileWasReplaced()) {
        if (m_isEdited) return; // the next save keeps both versions
        const qlonglong offset = m_view.readingOffset();
        showDocument();
        m_view.restoreOffset(offset); // not where it was when the document was left the last time
        return;
    }
    if (!style) return;
    m_currentPlist = relevantInheritedProperties();
    if (!m_md5hash.isEmpty()) {
        if (isReadOnlyDocument(m_path)) m_view.hideFormattingBar();
        if (m_view.isKeyWindow() && m_isEdited) return; // the page takes the style with the save
    }
    applyStyle();
}

void TMLTDocumentViewController::applyStyle()
{
    if (m_kind == DocumentViewKind::PlainText) return m_view.restylePlainText();
    if (m_kind != DocumentViewKind::Formatted) return;
    if (lowerExtension(m_path) == u"eml" || hasMarkdownExtension(m_path)) return showDocument();
    platform().delayedCalls.schedule(QStringLiteral("updateHTML"), callArgument(), 300ms,
                                     [this] { m_view.updateHTML(); });
}

void TMLTDocumentViewController::pictureChanged(const QString &picture)
{
    static constexpr qint64 tolerance = 3000;
    const QDateTime date = QFileInfo(picture).lastModified();
    if (std::abs(QFileInfo(m_path).lastModified().msecsTo(date)) <= tolerance) return;
    const auto decoded = readTextFile(m_path);
    const QString reference = QStringLiteral("TMImages/") + lastPathComponent(picture);
    if (decoded && tm_setOfEmbeddedPhotos(decoded->text).contains(reference)) reloadCurrentDocument();
}

// -- reload -----------------------------------------------------------------------------------------------------------

void TMLTDocumentViewController::reloadCurrentDocument()
{
    if (m_kind == DocumentViewKind::None) return m_view.showNothing();
    writeTextToFile();
    if (m_isEdited || m_isNew) return;
    if (m_kind == DocumentViewKind::PlainText) {
        const bool sameEncoding = qlonglong(m_form.encoding) == tm_textEncodingOfFile(m_path);
        if (sameEncoding && !fileWasReplaced()) return m_view.restylePlainText();
    }
    const bool isPage = m_kind == DocumentViewKind::Formatted && !m_view.canGoBack();
    const bool isShownAnew = lowerExtension(m_path) == u"eml" || isMedium(m_path) || hasMarkdownExtension(m_path) ||
                             isCombinedMarkdown(m_path) || fileWasReplaced();
    if (isPage && !isShownAnew) return m_view.updateHTML();
    saveCurrentDocumentOffset();
    showDocument();
}

// -- moves ------------------------------------------------------------------------------------------------------------

void TMLTDocumentViewController::documentMoved(const QString &originalPath, const QString &newPath, bool silentReload)
{
    if (m_path.isEmpty() || originalPath.isEmpty()) return;
    if (originalPath == newPath) return checkIfDocumentNeedsReload(newPath); // written in another view
    if (m_path != originalPath && !isBelow(m_path, originalPath)) return;
    // Who gives the document a name of their own does not want the first line's back with the next save.
    if (m_path == originalPath && nameWithoutExtension(newPath) != nameWithoutExtension(originalPath))
        m_titleIsFirstLineOfText = false;
    m_path = newPath + m_path.mid(originalPath.size());
    m_parentPath = tomelet::parentPath(m_path);
    if (silentReload) {
        m_view.addToBackList(m_path);
        return checkIfDocumentNeedsReload(m_path);
    }
    platform().delayedCalls.schedule(QStringLiteral("reshowDocument"), callArgument(), 300ms, [this] {
        writeTextToFile();
        if (!m_isEdited) showDocument();
    });
}

// -- style ------------------------------------------------------------------------------------------------------------

QVariantMap TMLTDocumentViewController::relevantInheritedProperties() const
{
    static const QStringList keys{
        QStringLiteral("notesFontName"),
        QStringLiteral("noteFontSize"),
        QStringLiteral("TextColor"),
        QStringLiteral("BackgroundColor"),
        QStringLiteral("BackgroundImage"),
        QStringLiteral("TextAlignment"),
        QStringLiteral("lineSpacing"),
        QStringLiteral("HyphenateText"),
        QStringLiteral("MarkdownConverter"),
        QStringLiteral("TOC"),
        QStringLiteral("CSS"),
    };
    static const QStringList pages{QStringLiteral("html"), QStringLiteral("webarchive"), QStringLiteral("eml")};
    if (m_path.isEmpty() || !(hasPlainTextExtension(m_path) || pages.contains(lowerExtension(m_path)))) return {};
    QVariantMap found;
    const QString root = tomeletRoot();
    const auto takeFrom = [&](const QString &item) {
        const QVariantMap properties = storedProperties(item);
        for (const QString &key : keys)
            if (const QVariant value = properties.value(key); !found.contains(key) && isNonEmptyProperty(value))
                found.insert(key, value);
    };
    takeFrom(m_path);
    QString book = tomelet::parentPath(m_path);
    while (found.size() < keys.size() && tm_itemIsChildOfTomelet(book, root)) {
        takeFrom(book);
        if (book == root) break;
        book = tomelet::parentPath(book);
    }
    return found;
}

bool TMLTDocumentViewController::relevantInheritedPropertyDidChange() const
{
    return relevantInheritedProperties() != m_currentPlist;
}

} // namespace tomelet
