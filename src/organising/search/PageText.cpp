// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/PageText.h"

#include "foundation/HtmlEntities.h"

#include <QSet>

#include <algorithm>

namespace tomelet {

namespace {

// A word may go on behind them.
bool standsWithinLine(const QString &element)
{
    static const QSet<QString> elements{
        QStringLiteral("a"),    QStringLiteral("abbr"), QStringLiteral("b"),      QStringLiteral("big"),
        QStringLiteral("code"), QStringLiteral("del"),  QStringLiteral("em"),     QStringLiteral("font"),
        QStringLiteral("i"),    QStringLiteral("ins"),  QStringLiteral("kbd"),    QStringLiteral("mark"),
        QStringLiteral("q"),    QStringLiteral("s"),    QStringLiteral("small"),  QStringLiteral("span"),
        QStringLiteral("sub"),  QStringLiteral("sup"),  QStringLiteral("strong"), QStringLiteral("tt"),
        QStringLiteral("u"),    QStringLiteral("var"),  QStringLiteral("wbr")};
    return elements.contains(element);
}

class PageReader
{
public:
    explicit PageReader(const QString &html)
        : m_html(html)
        , m_end(html.size())
    {}

    QString read()
    {
        findBody();
        while (m_at < m_end) {
            if (m_html[m_at] == u'<') readTag();
            else takeCharacter();
        }
        return withEntitiesResolved(m_text);
    }

private:
    void findBody()
    {
        const qsizetype head = m_html.indexOf(u"</head>", 0, Qt::CaseInsensitive);
        if (head >= 0) m_at = head + 7;
        const qsizetype body = m_html.indexOf(u"<body", m_at, Qt::CaseInsensitive);
        const qsizetype end = body < 0 ? -1 : m_html.indexOf(u'>', body);
        if (end < 0) return;
        m_at = end + 1;
        const qsizetype close = m_html.lastIndexOf(u"</body>", -1, Qt::CaseInsensitive);
        if (close >= m_at) m_end = close;
    }

    void takeCharacter() { m_text += m_html[m_at++]; }

    // What begins no tag is text; so is all the rest, once nothing is closed any more.
    void readTag()
    {
        const QChar next = m_at + 1 < m_end ? m_html[m_at + 1] : QChar();
        if (!next.isLetter() && !QStringView(u"/!?").contains(next)) return takeCharacter();
        if (QStringView(m_html).sliced(m_at).startsWith(u"<!--")) return skipTo(u"-->", m_openComment);
        if (m_close < m_at) m_close = m_html.indexOf(u'>', m_at);
        if (m_close < 0) m_close = m_end;
        if (m_close >= m_end) return takeCharacter();
        const QString element = elementAt(m_at + 1);
        if (element == u"script") return skipTo(u"</script>", m_openScript);
        if (element == u"style") return skipTo(u"</style>", m_openStyle);
        if (!standsWithinLine(element)) m_text += u'\n';
        m_at = m_close + 1;
    }

    [[nodiscard]] QString elementAt(qsizetype from) const
    {
        if (from < m_end && m_html[from] == u'/') ++from;
        qsizetype end = from;
        while (end < m_end && end - from < 16 && m_html[end].isLetterOrNumber()) ++end;
        return m_html.sliced(from, end - from).toLower();
    }

    // To look once more for what was not found would take the time of the whole page for each.
    void skipTo(QStringView mark, bool &isMissing)
    {
        const qsizetype found = isMissing ? -1 : m_html.indexOf(mark, m_at, Qt::CaseInsensitive);
        isMissing = found < 0;
        if (isMissing) takeCharacter();
        else m_at = std::min(m_end, found + mark.size());
    }

    const QString &m_html;
    qsizetype m_at = 0;
    qsizetype m_end;
    QString m_text;
    qsizetype m_close = -1; // of tags: the first one from m_at on, where it is not before that
    bool m_openComment = false;
    bool m_openScript = false;
    bool m_openStyle = false;
};

} // namespace

QString textOfPage(const QString &html)
{
    return PageReader(html).read();
}

} // namespace tomelet
