// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/DroppedText.h"

#include "editor/DocumentForms.h"
#include "editor/PastedImages.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"

namespace tomelet {

namespace {

QString escapedForMarkdown(QString text)
{
    for (const QChar mark : {u'\\', u'[', u']'}) text.replace(mark, QString(u'\\') + mark);
    return text.simplified();
}

QString linkText(const DropTarget &target, const QString &address, const QString &title)
{
    if (!target.isHtmlSource) return u'[' + escapedForMarkdown(title) + QStringLiteral("](") + address + u')';
    return QStringLiteral("<a href=\"") + address.toHtmlEscaped() + QStringLiteral("\">") +
           title.simplified().toHtmlEscaped() + QStringLiteral("</a>");
}

QString imageText(const DropTarget &target, const QString &reference, const QString &title)
{
    if (reference.isEmpty()) return {};
    if (target.isHtmlSource) return QStringLiteral("<img src=\"") + reference.toHtmlEscaped() + QStringLiteral("\">");
    return u'!' + linkText(target, tm_pathEscapedForMarkdownLink(percentDecoded(reference)), title);
}

QString addressOfFile(const DropTarget &target, const QString &file)
{
    const bool isItem = tm_itemIsChildOfTomelet(file);
    const QString path = isItem ? tm_makeRelativeToPath(file, target.book) : file;
    // A parenthesis would end the link of a Markdown text.
    QString encoded = percentEncodedPath(path);
    encoded.replace(u'(', QStringLiteral("%28")).replace(u')', QStringLiteral("%29"));
    return isItem ? encoded : QString(QStringLiteral("file://") + encoded);
}

QString textForFile(const DropTarget &target, const QString &file)
{
    const QString title = nameWithoutExtension(file);
    if (isFolder(file) || !hasImageExtension(file)) return linkText(target, addressOfFile(target, file), title);
    const auto bytes = readFile(file);
    return bytes ? imageText(target, storeInImages(target.book, lastPathComponent(file), *bytes), title) : QString();
}

} // namespace

DropTarget dropTargetFor(const QString &document, const QString &book)
{
    const bool isPage = lowerExtension(document).startsWith(u"htm") && !isCombinedMarkdown(document);
    return {document.isEmpty() ? book : parentPath(document), isPage};
}

QString textForDroppedFiles(const DropTarget &target, const QStringList &files, QStringList &failed)
{
    QStringList texts;
    for (const QString &file : files) {
        const QString text = textForFile(target, file);
        (text.isEmpty() ? failed : texts).append(text.isEmpty() ? lastPathComponent(file) : text);
    }
    return texts.join(u'\n');
}

QString textForPastedImage(const DropTarget &target, const QByteArray &png)
{
    const QString name = nameForPastedImage();
    return imageText(target, storeInImages(target.book, name, png), nameWithoutExtension(name));
}

QString textForLink(const DropTarget &target, const QString &address, const QString &title)
{
    if (!title.trimmed().isEmpty() && title.trimmed() != address) return linkText(target, address, title);
    return target.isHtmlSource ? linkText(target, address, address) : QString(u'<' + address + u'>');
}

} // namespace tomelet
