// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/NestedRewrites.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tomelet {

// A "<" near the end of the text could become an opener together with what follows.
static bool endsInsideOpener(QStringView text, qsizetype openerSize)
{
    return text.last(std::min(text.size(), openerSize - 1)).contains(u'<');
}

// Puts a part in front of what is still unread of a text, in the room of what was read; gives where it begins.
static qsizetype putInFront(QString &text, qsizetype from, QStringView part)
{
    const qsizetype begin = std::max(qsizetype(0), from - part.size());
    text.replace(begin, from - begin, part.data(), part.size());
    return begin;
}

QString replaceFirstMatches(QString text, const QString &pattern, int options, const QString &opener,
                            const QString &closer, const MatchReplacement &replacement)
{
    QString result;
    qsizetype from = 0;
    while (text.indexOf(closer, from) >= 0) {
        const PatternMatches found = firstMatchOfPattern(text, pattern, options, {from, text.size() - from});
        if (found.isEmpty()) break;
        const Range range = found[0].range();
        const QString made = replacement(found[0], text);
        result.append(QStringView(text).sliced(from, range.location - from));
        const bool joins = endsInsideOpener(result, opener.size());
        const qsizetype madeAt = result.size();
        result.append(made);
        from = range.end();
        if (!joins && !made.contains(opener) && !endsInsideOpener(made, opener.size())) continue;
        // The replacement begins to match in its turn, perhaps together with what stands around it.
        const qsizetype again = std::max(qsizetype(0), madeAt - opener.size());
        from = putInFront(text, from, QStringView(result).sliced(again));
        result.truncate(again);
    }
    result.append(QStringView(text).sliced(from));
    return result;
}

namespace {

// Reads a text from front to back; tags that are open wait on a stack for their closing ones.
class InnermostRewriter
{
public:
    using Replacement = std::function<QString(const QString &, const QString &)>;

    InnermostRewriter(const QStringList &names, const Replacement &replacement)
        : m_names(names)
        , m_replacement(replacement)
    {}

    QString result(const QString &text)
    {
        read(text);
        return m_result;
    }

private:
    struct OpenTag
    {
        qsizetype begin;   // where "<" stands in the result
        qsizetype content; // behind ">"
        QString name;      // empty for a tag that is never closed but hides the ones in front of it
    };

    // What a replacement leaves to be read again comes in front of what is still unread.
    void read(const QString &text)
    {
        m_unread.push_back({text, 0});
        while (!m_unread.empty()) {
            const auto [part, from] = m_unread.back();
            const qsizetype at = part.indexOf(u'<', from);
            m_result.append(QStringView(part).sliced(from, (at < 0 ? part.size() : at) - from));
            if (at < 0) {
                m_unread.pop_back();
                continue;
            }
            const size_t own = m_unread.size() - 1;
            const qsizetype length = readTag(QStringView(part).sliced(at));
            m_unread[own].second = at + length;
        }
    }

    // Takes a tag over, or the "<" alone; gives how much was read.
    qsizetype readTag(QStringView rest)
    {
        for (const QString &name : m_names) {
            if (rest.sliced(1).startsWith(name)) return open(rest, name);
            const QString closing = QStringLiteral("</") + name + u'>';
            if (!rest.startsWith(closing)) continue;
            if (!m_open.empty() && m_open.back().name == name) close();
            else m_result.append(closing);
            return closing.size();
        }
        m_result.append(u'<');
        return 1;
    }

    qsizetype open(QStringView rest, const QString &name)
    {
        const bool exact = rest.sliced(1 + name.size()).startsWith(u'>');
        const qsizetype length = 1 + name.size() + (exact ? 1 : 0);
        const qsizetype begin = m_result.size();
        m_result.append(rest.first(length));
        m_open.push_back({begin, m_result.size(), exact ? name : QString()});
        return length;
    }

    void close()
    {
        const OpenTag tag = m_open.back();
        m_open.pop_back();
        const QString content = m_result.mid(tag.content);
        m_result.truncate(tag.begin);
        const QString made = m_replacement(tag.name, content);
        // Closing tags that nobody took inside may close what now is the innermost.
        if (made.contains(u"</")) m_unread.push_back({made, 0});
        else m_result.append(made);
    }

    const QStringList &m_names;
    const Replacement &m_replacement;
    QString m_result;
    std::vector<OpenTag> m_open;
    std::vector<std::pair<QString, qsizetype>> m_unread; // texts, each with the position to go on from
};

} // namespace

QString replaceInnermost(const QString &text, const QStringList &names,
                         const std::function<QString(const QString &, const QString &)> &replacement)
{
    return InnermostRewriter(names, replacement).result(text);
}

} // namespace tomelet
