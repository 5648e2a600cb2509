// SPDX-License-Identifier: GPL-3.0-or-later
// The controller of the one document that a window or tab presents: how it is shown and edited, when it is written back
// and in which form, and what happens when its file changes on disk. The widgets are behind DocumentView.
//
// A document that was not touched is never written: without the hash that is taken when editing begins, no save does
// anything. Nothing that another program wrote is written over: its version is set beside the document first.
#pragma once

#include "editor/DocumentSave.h"
#include "editor/DocumentView.h"
#include "foundation/NotificationCenter.h"
#include "foundation/SafeWriter.h"
#include "foundation/SerialQueue.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace tomelet {

/// Where in a document one arrives; where one left it when both are empty.
struct Arrival
{
    QString searchKey; ///< is highlighted
    QString anchor;    ///< "part", or "page=3" of a PDF document
};

class TMLTDocumentViewController
{
public:
    explicit TMLTDocumentViewController(DocumentView &view);
    /// Saves nothing: whoever closes a document calls closeDocument first.
    ~TMLTDocumentViewController();
    TMLTDocumentViewController(const TMLTDocumentViewController &) = delete;
    TMLTDocumentViewController &operator=(const TMLTDocumentViewController &) = delete;

    // -- state
    [[nodiscard]] const QString &path() const { return m_path; }
    [[nodiscard]] const QString &parentPath() const { return m_parentPath; }
    [[nodiscard]] DocumentViewKind viewThatIsVisible() const { return m_kind; }
    [[nodiscard]] bool presentingToggledView() const { return m_presentingToggledView; }
    [[nodiscard]] bool canToggle() const { return m_canToggle; }
    /// What switching to the other view shows, for the person to read; "" where there is no other view.
    [[nodiscard]] QString toggleToolTip() const;
    /// The page on display is made from Markdown.
    [[nodiscard]] bool showsMarkdown() const;
    [[nodiscard]] TextEncoding stringEncoding() const { return m_form.encoding; }
    [[nodiscard]] const QString &md5hash() const { return m_md5hash; }
    [[nodiscard]] bool titleIsFirstLineOfText() const { return m_titleIsFirstLineOfText; }
    [[nodiscard]] const QStringList &embeddedContexts() const { return m_embeddedContexts; }
    [[nodiscard]] const QStringList &referencedDocuments() const { return m_referencedDocuments; }
    /// There is typing that is not in the file yet.
    [[nodiscard]] bool isEdited() const { return m_isEdited; }

    // -- opening and closing
    /// Saves the present document and shows another; an empty path shows none. False: the present one could not be
    /// saved and stays, so that its text is not lost.
    /// `toggled`: in the other of its two views.
    bool openDocument(const QString &path, bool toggled = false, const Arrival &arrival = {});
    bool closeDocument() { return openDocument({}); }
    /// Loads the document anew into the view that fits.
    void showDocument();
    /// A document without a file yet; `book` is where it will go, "" for the inbox or the root. False as above.
    bool createNewDocument(const QString &extension, const QString &book);
    void tm_togglePlainTextAndFormattedView();
    void saveCurrentDocumentOffset();

    // -- editing; the view asks and tells
    /// Before the first key in the plain text view. False: the document takes no editing.
    [[nodiscard]] bool textShouldBeginEditing();
    /// The same for the formatted view; `onClickable`: the mouse hovers over a link or box.
    [[nodiscard]] bool shouldBeginEditingInDOMRange(bool onClickable);
    /// Before each change of the plain text. Undo always passes.
    [[nodiscard]] bool shouldChangeText(bool isUndo);
    /// After each change in either view: a save follows when typing pauses.
    void textDidChange();

    // -- saving
    void writeTextToFile();
    /// What the timers do: the same in the background.
    void autosave();
    /// Ends the save that is under way in the background, if there is one.
    void waitForSave();
    /// Why the last save failed; "" when it did not.
    [[nodiscard]] const QString &failure() const { return m_failure; }
    /// The document as it would be saved, into another file; the document itself stays unsaved.
    [[nodiscard]] WriteResult saveCopy(const QString &path) const;
    /// Gives up what is not in the file: nothing is saved any more until editing begins again.
    void discardChanges();
    /// The same before the person turns to another view, unless texts are saved on command only.
    void saveTyping();
    /// The next save writes even if the text is the same.
    void forceSave() { m_forcedSave = true; }
    /// Names the file after its first line; false when that name is taken or the file could not be moved.
    bool tm_renameToFirstLineOfText();

    // -- changes from outside; observed by the controller itself
    void checkIfDocumentNeedsReload(const QString &changedPath);
    void reloadCurrentDocument();
    void documentMoved(const QString &originalPath, const QString &newPath, bool silentReload);

    /// The nearest values on the way from the document up to the root for all that styles it.
    [[nodiscard]] QVariantMap relevantInheritedProperties() const;
    [[nodiscard]] bool relevantInheritedPropertyDidChange() const;

private:
    void observe();
    [[nodiscard]] bool leaveDocument();
    void clearState();
    void loadPlainText();
    void loadFormatted();
    void showNewDocument();
    void noteFile();
    void restoreReadingPosition();
    [[nodiscard]] qlonglong pageToShow() const;
    void arriveAtAnchor();
    [[nodiscard]] QString plainTextOf(const QString &stored) const;
    void showReadText(const QByteArray &bytes);
    void lookUpParagraph(const QString &paragraph);
    [[nodiscard]] bool refusesEditing() const;

    [[nodiscard]] std::shared_ptr<DocumentSave> beginSave();
    void endSave(std::shared_ptr<DocumentSave> save);
    void completeSave(const std::shared_ptr<DocumentSave> &done);
    void saveAnew(const DocumentSave &save);
    void takeSaved(bool isEdited);
    void takeUnchanged(bool isEdited);
    void cancelPendingSave();
    void saveAfter(std::chrono::milliseconds pause);
    void saveWhileTypingAfter(std::chrono::milliseconds pause);
    void saveWhileTyping();
    [[nodiscard]] QString callArgument() const;
    [[nodiscard]] bool canBeSaved();
    [[nodiscard]] bool navigatedAway() const;
    void begin(DocumentSave &save) const;
    void beginNew(DocumentSave &save) const;
    void takeNewFile(const DocumentSave &save);
    [[nodiscard]] QString extensionForCreation() const;
    [[nodiscard]] bool titleHasChanged(const QString &visibleText) const;
    [[nodiscard]] bool followTitle(DocumentSave &save);
    void deleteEmptiedDocument();
    [[nodiscard]] bool moveToTitle(const QString &title);
    [[nodiscard]] bool setForeignVersionAside();
    void finishSave(const DocumentSave &save);
    void announceSave();
    void tellFailure(const QString &message);
    void tellWriteProtected();

    [[nodiscard]] bool isStyleChange(const QString &changedPath) const;
    [[nodiscard]] bool fileWasReplaced();
    void applyStyle();
    void pictureChanged(const QString &picture);

    DocumentView &m_view;
    std::vector<NotificationCenter::Subscription> m_subscriptions;

    QString m_path;
    QString m_parentPath;
    DocumentViewKind m_kind = DocumentViewKind::None;
    bool m_presentingToggledView = false;
    bool m_canToggle = false;
    bool m_isNew = false; ///< a document without a file yet, rather than none
    QString m_fileExtensionForNewDoc;

    TextForm m_form;
    QString m_shownText; ///< the plain text as loaded or last saved, with its own line ends
    QString m_md5hash;
    QString m_md5OfFile; ///< of the bytes as read or last written; "" when there is no file
    QDateTime m_modDateOfPresentedDocument;
    std::optional<FileStamp> m_stampOfPresentedDocument; ///< tells saves apart that share a date
    QDateTime m_modDateOfPresentedPlist;
    bool m_titleIsFirstLineOfText = false;
    bool m_isEditable = false; ///< the text came out of the file whole, so that it can go back
    bool m_isEdited = false;
    bool m_isTyping = false;         ///< the save is one between two keys
    bool m_savesWhileTyping = false; ///< such a save waits
    bool m_forcedSave = false;
    QString m_failure; ///< was told
    bool m_isForeignPage = false;
    QString m_formattedMainFrameURL;
    QStringList m_embeddedContexts;
    QStringList m_referencedDocuments;
    QVariantMap m_currentPlist;
    Arrival m_arrival; ///< of the document that is being opened

    quint64 m_changes = 0;                ///< counts what was typed
    std::shared_ptr<DocumentSave> m_save; ///< under way in the background
    bool m_savesAgain = false;            ///< another one was due meanwhile
    bool m_renamesAgain = false;          ///< and the name was to follow the title
    QObject m_mainThread;                 // receives what the thread hands back; nothing comes once it is gone
    SerialQueue m_saves;
};

/// The document takes no changes: its property `R/O`, a file without write permission, a stored version, or a conflict
/// that waits for the person.
[[nodiscard]] bool isReadOnlyDocument(const QString &path);

} // namespace tomelet
