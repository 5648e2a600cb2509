// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/CriticMarkup.h"

#include <vector>

namespace tomelet {

namespace {

enum Kind { Addition, Deletion, Substitution, Comment, Highlight };

struct Mark
{
    const char16_t *text;
    Kind kind;
    enum Role { Opens, Divides, Closes } role;
};

constexpr Mark marks[] = {
    {u"{++", Addition, Mark::Opens},      {u"++}", Addition, Mark::Closes},    {u"{--", Deletion, Mark::Opens},
    {u"--}", Deletion, Mark::Closes},     {u"{~~", Substitution, Mark::Opens}, {u"~>", Substitution, Mark::Divides},
    {u"~~}", Substitution, Mark::Closes}, {u"{>>", Comment, Mark::Opens},      {u"<<}", Comment, Mark::Closes},
    {u"{==", Highlight, Mark::Opens},     {u"==}", Highlight, Mark::Closes},
};

const Mark *markAt(QStringView rest)
{
    for (const Mark &mark : marks)
        if (rest.startsWith(QStringView(mark.text))) return &mark;
    return nullptr;
}

// Copies a text and cuts back what turns out to be marked, as soon as its closing mark comes.
class Acceptor
{
public:
    QString result(QStringView text)
    {
        for (qsizetype at = 0; at < text.size();) {
            const bool escaped = at > 0 && text[at - 1] == u'\\';
            const Mark *mark = escaped ? nullptr : markAt(text.sliced(at));
            if (mark && take(*mark)) {
                at += QStringView(mark->text).size();
                continue;
            }
            m_result.append(text[at++]);
        }
        return m_result;
    }

private:
    struct Opener
    {
        Kind kind;
        qsizetype begin;     // of the mark in the result
        qsizetype dividedAt; // of the "~>" of a substitution, -1 before it
    };

    // True when the mark was taken over or carried out.
    bool take(const Mark &mark)
    {
        if (mark.role == Mark::Opens) {
            m_open.push_back({mark.kind, m_result.size(), -1});
            m_result.append(QStringView(mark.text));
            return true;
        }
        const qsizetype opener = openerOf(mark.kind);
        if (opener < 0) return false;
        if (mark.role == Mark::Divides) {
            if (m_open[size_t(opener)].dividedAt >= 0) return false;
            m_open[size_t(opener)].dividedAt = m_result.size();
            m_result.append(QStringView(mark.text));
            return true;
        }
        return close(size_t(opener), mark.kind);
    }

    [[nodiscard]] qsizetype openerOf(Kind kind) const
    {
        for (qsizetype i = qsizetype(m_open.size()); i-- > 0;)
            if (m_open[size_t(i)].kind == kind) return i;
        return -1;
    }

    bool close(size_t index, Kind kind)
    {
        const Opener opener = m_open[index];
        if (kind == Substitution && opener.dividedAt < 0) return false;
        m_open.resize(index);
        const bool keepsText = kind != Deletion && kind != Comment;
        const QString kept = kind == Substitution ? m_result.mid(opener.dividedAt + 2) : m_result.mid(opener.begin + 3);
        m_result.truncate(opener.begin);
        if (keepsText) m_result.append(kept);
        return true;
    }

    QString m_result;
    std::vector<Opener> m_open;
};

} // namespace

QString acceptCriticMarkup(const QString &text)
{
    // Nearly every text has none.
    if (!text.contains(u"{") || !text.contains(u"}")) return text;
    return Acceptor().result(text);
}

} // namespace tomelet
