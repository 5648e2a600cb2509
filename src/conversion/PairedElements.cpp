// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/PairedElements.h"

#include <algorithm>
#include <optional>

namespace tomelet {

namespace {

constexpr qsizetype smallPart = 512;

// A sign that stands for itself, as in "a < b", cannot become a tag by what is taken away behind it.
bool canBeginTag(QStringView text, qsizetype at)
{
    const QChar next = at + 1 < text.size() ? text[at + 1] : QChar(u'<');
    return next == u'<' || next == u'/' || next.isLetter();
}

// The end of a part: behind a letter outside of all tags, where no match can run across. Without one, the
// text's end.
qsizetype endOfPart(QStringView text, qsizetype from, qsizetype barrier)
{
    bool inTag = false;
    for (qsizetype i = from; i < barrier; ++i) {
        const QChar c = text[i];
        if (c == u'<' && canBeginTag(text, i)) {
            if (inTag) break; // when tags go, what stays could become a tag
            inTag = true;
        } else if (c == u'>') {
            inTag = false;
        } else if (!inTag && i - from >= smallPart && c.isLetterOrNumber()) {
            return i + 1;
        }
    }
    return text.size();
}

// The text at each time is m_result, then m_middle from m_head on, then m_text from m_from on.
class PairedRewriter
{
public:
    PairedRewriter(const QString &text, const PairedElement &element)
        : m_element(element)
        , m_text(text)
    {}

    QString result()
    {
        while (rewriteNext()) {
        }
        return m_result + QStringView(m_middle).sliced(m_head) + QStringView(m_text).sliced(m_from);
    }

private:
    // Goes on to the next opening tag; nothing without one that ends.
    std::optional<OpeningTag> findIn(const QString &text, qsizetype &from)
    {
        for (;;) {
            const qsizetype at = text.indexOf(m_element.opener, from);
            if (at < 0) return {};
            m_result.append(QStringView(text).sliced(from, at - from));
            from = at;
            OpeningTag tag = m_element.readTag(QStringView(text).sliced(at));
            if (tag.length != OpeningTag::None) return tag;
            m_result.append(m_element.opener);
            from += m_element.opener.size();
        }
    }

    std::optional<OpeningTag> findTag()
    {
        if (m_head < m_middle.size()) {
            std::optional<OpeningTag> tag = findIn(m_middle, m_head);
            if (tag && tag->length > 0) return tag;
            if (tag) {
                readAgain(m_head);
            } else {
                m_result.append(QStringView(m_middle).sliced(m_head));
                m_middle.clear();
                m_head = 0;
            }
        }
        return findIn(m_text, m_from);
    }

    bool rewriteNext()
    {
        const auto tag = findTag();
        if (!tag || tag->length < 0) return false;
        const bool inMiddle = m_head < m_middle.size();
        const qsizetype closing = m_text.indexOf(m_element.closer, m_from + (inMiddle ? 0 : tag->length));
        if (closing < 0) return false;
        if (!inMiddle) m_middle.clear(), m_head = 0, m_settled = 0;
        m_head += tag->length;
        m_middle.append(QStringView(m_text).sliced(m_from, closing - m_from));
        m_from = closing + m_element.closer.size();
        if (m_element.dropsEmpty && m_head == m_middle.size()) replaceTags({}, {});
        else replaceTags(tag->before, tag->after);
        return true;
    }

    void replaceTags(const QString &before, const QString &after)
    {
        const qsizetype changed = rewriteContent();
        m_result.append(before);
        m_middle.append(after);
        joinInFront();
        joinBehind(std::max(m_head, changed - m_element.closer.size()));
    }

    // The end of what is done can be the start of an opening tag that goes on here. The tag that stood here
    // left room.
    void joinInFront()
    {
        const qsizetype size = std::min(m_result.size(), m_element.opener.size() - 1);
        const qsizetype at = m_result.indexOf(u'<', m_result.size() - size);
        if (at < 0) return;
        const qsizetype joined = m_result.size() - at;
        m_head -= joined;
        std::copy(m_result.cbegin() + at, m_result.cend(), m_middle.begin() + m_head);
        m_result.truncate(at);
    }

    // Closing tags that came up are for the next ones, and the end can become a tag together with what
    // follows.
    void joinBehind(qsizetype changed)
    {
        const qsizetype size = std::max(m_element.opener.size(), m_element.closer.size()) - 1;
        const qsizetype end = m_middle.indexOf(u'<', std::max(m_head, m_middle.size() - size));
        if (m_middle.indexOf(m_element.closer, changed) >= 0) readAgain(m_head);
        else if (end >= 0) readAgain(end);
    }

    // Puts the middle's end in front of what is unread, in the room of what was read where there is enough.
    void readAgain(qsizetype at)
    {
        const qsizetype size = m_middle.size() - at;
        const qsizetype begin = std::max(qsizetype(0), m_from - size);
        m_text.replace(begin, m_from - begin, m_middle.constData() + at, size);
        m_from = begin;
        m_middle.truncate(at);
        m_settled = std::min(m_settled, at);
    }

    // Parts in front that stay as they are do so for good. Gives where the first one begins that does not.
    qsizetype rewriteContent()
    {
        const qsizetype begin = std::max(m_settled, m_head);
        m_settled = m_middle.size();
        if (m_element.rewritePart) {
            const QString text = m_middle.sliced(begin);
            m_settled = begin;
            const QString made = rewritten(text);
            m_middle.replace(begin, text.size(), made);
        }
        if (m_element.trimsContent) trimContent();
        return begin;
    }

    QString rewritten(const QString &text)
    {
        const QStringView content = QStringView(m_middle).sliced(m_head);
        const qsizetype barrier = m_element.barrier.isEmpty() ? -1 : text.indexOf(m_element.barrier);
        QString result;
        bool settled = true;
        for (qsizetype from = 0; from < text.size();) {
            const qsizetype end = endOfPart(text, from, barrier < 0 ? text.size() : barrier);
            const QString part = text.sliced(from, end - from);
            const QString made = m_element.rewritePart(part, content);
            settled = settled && end < text.size() && made == part;
            if (settled) m_settled += part.size();
            result.append(made);
            from = end;
        }
        return result;
    }

    void trimContent()
    {
        while (m_head < m_middle.size() && m_middle[m_head].isSpace()) ++m_head;
        qsizetype end = m_middle.size();
        while (end > m_head && m_middle[end - 1].isSpace()) --end;
        m_middle.truncate(end);
    }

    const PairedElement &m_element;
    QString m_result;
    QString m_middle;
    QString m_text;
    qsizetype m_head = 0;
    qsizetype m_from = 0;
    qsizetype m_settled = 0; // in the middle: up to here nothing is rewritten any more
};

} // namespace

QString rewritePairedElements(const QString &text, const PairedElement &element)
{
    return PairedRewriter(text, element).result();
}

} // namespace tomelet
