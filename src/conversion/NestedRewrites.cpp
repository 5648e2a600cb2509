// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/NestedRewrites.h"

#include <vector>

namespace tomelet {

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
        if (made.contains(opener)) {
            // The replacement begins to match in its turn, perhaps together with what follows.
            text.replace(0, range.end(), made);
            from = 0;
        } else {
            result.append(made);
            from = range.end();
        }
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
    {
    }

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

    void read(const QString &text)
    {
        qsizetype from = 0;
        for (qsizetype at = text.indexOf(u'<'); at >= 0; at = text.indexOf(u'<', from)) {
            m_result.append(QStringView(text).sliced(from, at - from));
            from = at + readTag(QStringView(text).sliced(at));
        }
        m_result.append(QStringView(text).sliced(from));
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
        if (made.contains(u"</")) read(made);
        else m_result.append(made);
    }

    const QStringList &m_names;
    const Replacement &m_replacement;
    QString m_result;
    std::vector<OpenTag> m_open;
};

} // namespace

QString replaceInnermost(const QString &text, const QStringList &names,
                         const std::function<QString(const QString &, const QString &)> &replacement)
{
    return InnermostRewriter(names, replacement).result(text);
}

} // namespace tomelet
