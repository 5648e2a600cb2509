// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/ArchiveReferences.h"

#include "foundation/Folder.h"

#include <algorithm>

namespace tomelet {

namespace {

// No file system takes longer ones, and each length costs a look at each value.
constexpr qsizetype longestName = 255;
// An escaped ampersand is five characters for one.
constexpr qsizetype longestEscape = 5;

QString lastPart(const QString &url)
{
    return url.mid(url.lastIndexOf(u'/') + 1);
}

QString withoutQuery(const QString &url)
{
    return url.left(url.indexOf(u'?'));
}

QString encoded(const QString &url)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(url, "!$&'()*+,;=:@/?"));
}

QString normalForm(const QUrl &url)
{
    return url.isValid() ? url.toString(QUrl::FullyEncoded | QUrl::RemoveFragment) : QString();
}

} // namespace

QString nameOfResource(const QString &url)
{
    const QString name = lastPathComponent(withoutQuery(encoded(url)));
    return name == u"." || name == u".." || name == u"/" ? QString() : name;
}

ArchiveReferences::ArchiveReferences(const QList<SavedResource> &resources, const QString &pageUrl,
                                     Qt::CaseSensitivity sensitivity)
    : m_page(pageUrl)
    , m_sensitivity(sensitivity)
{
    for (const SavedResource &resource : resources) add(resource);
    for (const auto &[name, reference] : m_byName.asKeyValueRange())
        if (!m_nameLengths.contains(name.size())) m_nameLengths.append(name.size());
    std::ranges::sort(m_nameLengths, std::greater<>());
}

QString ArchiveReferences::keyOf(const QString &address) const
{
    return m_sensitivity == Qt::CaseSensitive ? address : address.toCaseFolded();
}

void ArchiveReferences::add(const SavedResource &resource)
{
    const auto put = [&resource](QHash<QString, QString> &table, const QString &key) {
        if (!key.isEmpty() && !table.contains(key)) table.insert(key, resource.reference);
    };
    const QUrl url(resource.url);
    put(m_byAddress, keyOf(resource.url));
    put(m_byAddress, keyOf(normalForm(url)));
    m_longestAddress = std::max(m_longestAddress, resource.url.size());
    const QString path = url.path(QUrl::FullyEncoded);
    if (path.startsWith(u'/') && path.size() > 1) {
        put(m_byPath, keyOf(path));
        if (url.hasQuery()) put(m_byPath, keyOf(path + u'?' + url.query(QUrl::FullyEncoded)));
    }
    if (!resource.isImage) return;
    // The page may have the address as it stands in the archive, or encoded.
    for (const QString &name : {lastPart(encoded(resource.url)), lastPart(resource.url)})
        if (name.size() <= longestName && !name.contains(u'"')) put(m_byName, name);
}

const QString *ArchiveReferences::referenceOfAddress(const QString &value) const
{
    const auto in = [](const QHash<QString, QString> &table, const QString &key) {
        const auto found = table.constFind(key);
        return found == table.cend() ? nullptr : &found.value();
    };
    if (const QString *found = in(m_byAddress, keyOf(value))) return found;
    if (!m_page.isRelative())
        if (const QString *found = in(m_byAddress, keyOf(normalForm(m_page.resolved(QUrl(value)))))) return found;
    return in(m_byPath, keyOf(value));
}

const QString *ArchiveReferences::pictureNamedAtEndOf(QStringView value) const
{
    for (const qsizetype length : m_nameLengths) {
        if (length > value.size()) continue;
        const auto found = m_byName.constFind(value.last(length).toString());
        if (found != m_byName.cend()) return &found.value();
    }
    return nullptr;
}

const QString *ArchiveReferences::referenceFor(QStringView value, bool isExactSource) const
{
    if (value.isEmpty()) return nullptr;
    // Pictures can stand in the page itself, as megabytes of an address.
    if (value.size() <= m_longestAddress * longestEscape) {
        const QString address = value.toString().replace(QStringLiteral("&amp;"), QStringLiteral("&"));
        if (const QString *found = referenceOfAddress(address)) return found;
    }
    return isExactSource ? pictureNamedAtEndOf(value) : nullptr;
}

// Candidates are parted by commas, their addresses from sizes by blanks; an address may hold a comma.
QString ArchiveReferences::pictureOffered(QStringView value) const
{
    for (const QString &word : value.toString().simplified().split(u' ')) {
        const QStringView address(word);
        if (const QString *found = referenceFor(address.endsWith(u',') ? address.chopped(1) : address, false))
            return *found;
    }
    return {};
}

// The name of the attribute whose "=" stands there, as far as it is one of these.
QString ArchiveReferences::attributeAt(QStringView text, qsizetype equals) const
{
    for (const QString &name : {QStringLiteral("src"), QStringLiteral("href"), QStringLiteral("srcset")})
        if (text.first(equals).endsWith(name, m_sensitivity)) return name;
    return {};
}

QString ArchiveReferences::writtenInto(const QString &text) const
{
    const QStringView view(text);
    QString written;
    qsizetype done = 0;
    for (qsizetype equals = view.indexOf(u"=\""); equals >= 0; equals = view.indexOf(u"=\"", equals)) {
        const QString attribute = attributeAt(view, equals);
        const qsizetype begin = equals + 2;
        equals = begin;
        if (attribute.isEmpty()) continue;
        const qsizetype end = view.indexOf(u'"', begin);
        if (end < 0) break;
        const bool isExactSource = attribute == u"src" && view.first(begin).endsWith(u"src=\"");
        const QStringView value = view.sliced(begin, end - begin);
        const bool isChoice = attribute == u"srcset";
        const QString choice = isChoice ? pictureOffered(value) : QString();
        const QString *reference = isChoice ? &choice : referenceFor(value, isExactSource);
        if (!reference) continue;
        written += view.sliced(done, begin - 2 - attribute.size() - done);
        written += attribute + QStringLiteral("=\"") + *reference + u'"';
        done = equals = end + 1;
    }
    return written + view.sliced(done);
}

} // namespace tomelet
