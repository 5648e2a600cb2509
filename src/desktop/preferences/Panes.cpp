// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/preferences/Panes.h"

#include "conversion/StyleSheets.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>

#include <span>
#include <utility>

namespace tomelet::desktop {

namespace {

struct Switch
{
    const char *text;
    const char *key;
    bool isInverse = false; ///< the setting says that it is off
};

// Lists and documents show what was chosen.
void tellChange()
{
    notifications().post(QStringLiteral("TMLTReloadCurrentBook"));
    notifications().post(QStringLiteral("TMLTReloadCurrentDocument"));
}

void store(const QString &key, const QVariant &value)
{
    settings().setObject(key, value);
    tellChange();
}

// Of a switch only presence counts: off removes the key.
void addSwitches(QFormLayout *form, std::span<const Switch> switches)
{
    for (const auto &[text, name, isInverse] : switches) {
        const QString key = QString::fromLatin1(name);
        auto *box = new QCheckBox(localized(text));
        box->setChecked(settings().boolean(key) != isInverse);
        QObject::connect(box, &QCheckBox::toggled, box, [key, inverse = isInverse](bool on) {
            store(key, on != inverse ? QVariant(true) : QVariant());
        });
        form->addRow(box);
    }
}

/// The values in the order of the texts; the first one stands for a setting that is not there.
void addChoice(QFormLayout *form, const char *title, const QString &key, const QStringList &texts,
               const QVariantList &values)
{
    auto *choice = new QComboBox;
    choice->addItems(texts);
    const QVariant now = settings().object(key);
    choice->setCurrentIndex(int(std::max<qsizetype>(values.indexOf(now), 0)));
    QObject::connect(choice, &QComboBox::currentIndexChanged, choice,
                     [key, values](int index) { store(key, index == 0 ? QVariant() : values[index]); });
    form->addRow(localized(title), choice);
}

std::pair<QWidget *, QFormLayout *> emptyPane()
{
    auto *pane = new QWidget;
    return {pane, new QFormLayout(pane)};
}

} // namespace

QWidget *makeGeneralPane(std::function<void()> appearanceChanged)
{
    static const QString manualKey = QStringLiteral("selectAppearanceManually");
    static const QString darkKey = QStringLiteral("darkTheme");
    const auto [pane, form] = emptyPane();
    auto *appearance = new QComboBox;
    appearance->addItems(
        {localized(TOMELET_TEXT("As the desktop")), localized(TOMELET_TEXT("Light")), localized(TOMELET_TEXT("Dark"))});
    appearance->setCurrentIndex(!settings().contains(manualKey) ? 0 : settings().boolean(darkKey) ? 2 : 1);
    QObject::connect(appearance, &QComboBox::currentIndexChanged, pane,
                     [changed = std::move(appearanceChanged)](int index) {
                         settings().setObject(manualKey, index == 0 ? QVariant() : QVariant(QStringLiteral("yes")));
                         if (index > 0) settings().setObject(darkKey, index == 2 ? QVariant(true) : QVariant());
                         changed();
                     });
    form->addRow(localized(TOMELET_TEXT("Appearance")), appearance);
    QStringList counts;
    QVariantList indexes;
    for (qlonglong index = 0; index < 4; ++index) {
        counts.append(QString::number(index * 10 + 10));
        indexes.append(index);
    }
    addChoice(form, TOMELET_TEXT("Number of Recent Items"), QStringLiteral("recentItemCount"), counts, indexes);
    static constexpr Switch switches[] = {
        {TOMELET_TEXT("Show file extensions"), "showFileExtensions"},
        {TOMELET_TEXT("Order names by the numbers in them"), "useNumericOrder"},
        {TOMELET_TEXT("In a custom order, show new documents at the top"), "manualSortNewAtTop"},
        {TOMELET_TEXT("Open the last document at launch"), "openMostRecentDocOnLaunch"},
        {TOMELET_TEXT("Close the document when another book is chosen"), "hideDocumentWhenChangingBook"},
        {TOMELET_TEXT("Move pictures that nothing refers to to the trash"), "cleanUpAttachments"},
    };
    addSwitches(form, switches);
    return pane;
}

QWidget *makeWritingPane()
{
    const auto [pane, form] = emptyPane();
    addChoice(form, TOMELET_TEXT("New Documents"), QStringLiteral("DefaultDocumentType"),
              {localized(TOMELET_TEXT("Formatted")), localized(TOMELET_TEXT("Markdown")),
               localized(TOMELET_TEXT("Plain Text"))},
              {QStringLiteral("html"), QStringLiteral("md"), QStringLiteral("txt")});
    static constexpr Switch switches[] = {
        {TOMELET_TEXT("Save while typing"), "noAutosaveText", true},
        {TOMELET_TEXT("Begin the text of a new page that a link makes with its title"), "formatFirstLineAsTitle"},
        {TOMELET_TEXT("Highlight Markdown"), "HighlightMarkdown"},
        {TOMELET_TEXT("Continue lists on a new line"), "AutoIndentLists"},
        {TOMELET_TEXT("Indent with tabs instead of blanks"), "IndentWithTabs"},
        {TOMELET_TEXT("Insert closing brackets and quotes"), "insertClosingCharacters"},
        {TOMELET_TEXT("Leave comments out of the word count"), "ignoreCommentsForWordCount"},
        {TOMELET_TEXT("Show the source of formatted documents with its head"), "showHTMLHeader"},
        {TOMELET_TEXT("Show web archives as pages"), "openWebarchivesWithTMLTMethods"},
    };
    addSwitches(form, switches);
    return pane;
}

QWidget *makeMarkdownPane()
{
    const auto [pane, form] = emptyPane();
    addChoice(form, TOMELET_TEXT("Converter"), QStringLiteral("MarkdownConverter"),
              {localized(TOMELET_TEXT("Discount")), localized(TOMELET_TEXT("Tomelet's own, with all extensions"))},
              {0LL, 1LL});
    const QStringList sheets = availableStyleSheets();
    QStringList names{localized(TOMELET_TEXT("Default"))};
    QVariantList values{QVariant()};
    for (const QString &sheet : sheets) {
        // What other sheets include, and what screenplays are shown with.
        if (sheet == u"CSS/Elements.css" || sheet == u"CSS/ScriptCSS.css") continue;
        names.append(pathWithoutExtension(lastPathComponent(sheet)));
        values.append(sheet);
    }
    addChoice(form, TOMELET_TEXT("Style Sheet"), QStringLiteral("defaultStyleSheet"), names, values);
    static constexpr Switch switches[] = {
        {TOMELET_TEXT("Show Markdown as text first"), "showMarkdownAsPlainText"},
        {TOMELET_TEXT("Store new Markdown as a page that holds its source"), "createCombinedMarkdown"},
        {TOMELET_TEXT("Typographic quotes and dashes"), "useSmartyPants"},
        {TOMELET_TEXT("Show proposed changes (CriticMarkup)"), "showCriticMarkup"},
        {TOMELET_TEXT("Emphasize with underscores"), "useUnderscoreToEmphasizeMD"},
        {TOMELET_TEXT("Markdown without extensions"), "useMarkdownStrictly"},
        {TOMELET_TEXT("Headings are links to themselves"), "addLinksToHeadings"},
        {TOMELET_TEXT("Short names of headings, as other programs make them"), "useMMDCompatibleAnchors"},
    };
    addSwitches(form, switches);
    return pane;
}

QWidget *makeOrganisingPane()
{
    const auto [pane, form] = emptyPane();
    static constexpr Switch switches[] = {
        {TOMELET_TEXT("Contexts"), "contextsEnabled"},
        {TOMELET_TEXT("Take contexts from the texts of documents"), "extractContextsAutomatically"},
        {TOMELET_TEXT("Keep links true when documents move"), "manageLinks"},
        {TOMELET_TEXT("Show at the end of a document what links to it"), "appendBacklinksToText"},
        {TOMELET_TEXT("Web addresses in texts can be followed"), "HighlightLinks"},
        {TOMELET_TEXT("Wiki links in texts can be followed too"), "WikiActivateLinksInPlaintext"},
        {TOMELET_TEXT("A link without a target finds similar titles"), "WikiSmartResolveTitles"},
        {TOMELET_TEXT("It looks for them in the whole notebook"), "WikiSmartResolveGlobally"},
        {TOMELET_TEXT("It looks into the texts of its book"), "WikiSmartResolveContents"},
        {TOMELET_TEXT("Show the inbox among the smart books"), "showInboxAsSmartBook"},
        {TOMELET_TEXT("Extracted tasks go to the inbox"), "extractTasksToInbox"},
        {TOMELET_TEXT("Files from elsewhere are copied to the inbox"), "addDroppedItemsToInbox"},
    };
    addSwitches(form, switches);
    auto *markers = new QLineEdit(settings().string(QStringLiteral("contextMarkers")));
    markers->setPlaceholderText(QStringLiteral("@#"));
    markers->setMaxLength(8);
    QObject::connect(markers, &QLineEdit::editingFinished, markers, [markers] {
        const QString text = markers->text().remove(u' ');
        store(QStringLiteral("contextMarkers"), text.isEmpty() ? QVariant() : QVariant(text));
    });
    form->addRow(localized(TOMELET_TEXT("Signs in Front of Contexts")), markers);
    return pane;
}

} // namespace tomelet::desktop
