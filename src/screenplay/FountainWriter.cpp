// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenplay/FountainWriter.h"

#include "screenplay/FastFountainParser.h"

#include <QStringList>

#include <algorithm>
#include <vector>

namespace tomelet {

namespace {

// -- forms of an element ----------------------------------------------------------------------------------------------

QString firstLine(const QString &text)
{
    return text.left(text.indexOf(u'\n'));
}

// From the first line end on.
QString laterLines(const QString &text)
{
    return text.mid(firstLine(text).size());
}

QStringList withNumber(const QString &heading, const std::optional<QString> &number)
{
    if (!number) return {heading};
    const QString mark = u'#' + *number + u'#';
    // The blank in front of a number that was read is still part of the heading.
    return {heading + u' ' + mark, heading + mark};
}

QStringList formsOfHeading(const FNElement &heading, bool withNumbers)
{
    const QStringList plain =
        withNumbers ? withNumber(heading.elementText, heading.sceneNumber) : QStringList{heading.elementText};
    QStringList forms = plain;
    for (const QString &form : plain) forms << QString(u'.' + form) << QString(u". " + form);
    return forms;
}

// Action that was read as a heading until its second line can have that number and that mark.
QStringList formsOfAction(const FNElement &action)
{
    const QString &text = action.elementText;
    const QString later = laterLines(text);
    if (action.isCentered) {
        const QString line = firstLine(text);
        return {QString(u"> " + line + (line.endsWith(u' ') ? QStringLiteral("<") : QStringLiteral(" <")) + later)};
    }
    QStringList forms;
    if (!action.sceneNumber) forms << text;
    if (!later.isEmpty()) {
        const QStringList lines = withNumber(firstLine(text), action.sceneNumber);
        for (const QString &line : lines) forms << QString(line + later) << QString(u'.' + line + later);
        for (const QString &line : lines) forms << QString(u". " + line + later);
    }
    return forms << QString(u'!' + text);
}

// The blank keeps a transition that ends in "<" from being centered.
QStringList formsOfTransition(const QString &text)
{
    const QString forced = u"> " + text;
    return {text, forced, u"> " + firstLine(text) + u' ' + laterLines(text), forced};
}

// Lines can follow a comment directly; the last ones hold no empty line.
QStringList formsOfBoneyard(const QString &text)
{
    QStringList forms{QStringLiteral("/*") + text + QStringLiteral("*/"),
                      QStringLiteral("/*") + firstLine(text) + QStringLiteral("*/") + laterLines(text)};
    const qsizetype end = text.lastIndexOf(QStringLiteral("\n\n"));
    if (end >= 0)
        forms << QString(QStringLiteral("/*") + text.left(end + 1) + QStringLiteral("*/") + text.mid(end + 1));
    return forms << forms.first();
}

// The forms that an element can have, the plainest first.
QStringList formsOf(const FNElement &element, bool withNumbers)
{
    const QString &text = element.elementText;
    if (element.is(FNType::Action)) return formsOfAction(element);
    if (element.is(FNType::SceneHeading)) return formsOfHeading(element, withNumbers);
    if (element.is(FNType::Character)) return {text, u'@' + text};
    if (element.is(FNType::Transition)) return formsOfTransition(text);
    if (element.is(FNType::Lyrics)) return {text, u'~' + text};
    if (element.is(FNType::Boneyard)) return formsOfBoneyard(text);
    if (element.is(FNType::Comment)) return {QStringLiteral("\n[[") + text + QStringLiteral("]]")};
    if (element.is(FNType::Synopsis)) return {u'=' + text, u" =" + text}; // "===" would break the page
    if (element.is(FNType::SectionHeading)) return {QString(qMax(1, element.sectionDepth), u'#') + text};
    if (element.is(FNType::PageBreak)) return {QStringLiteral("====") + laterLines(text)};
    return {text};
}

// -- the walk over the elements ---------------------------------------------------------------------------------------

class BodyWriter
{
public:
    explicit BodyWriter(const FNScript &script);
    [[nodiscard]] QString body();

private:
    void findPlaces();
    [[nodiscard]] bool standsBelowName(qsizetype i) const;
    [[nodiscard]] bool readsAs(const QList<FNElement> &read, qsizetype i) const;
    [[nodiscard]] bool readsBack(const QString &form, qsizetype i, bool hasLineBelow) const;
    [[nodiscard]] QString formThatReadsBack(qsizetype i, bool isSecond) const;
    [[nodiscard]] bool isDualSecond(qsizetype i);
    [[nodiscard]] bool isWritten(qsizetype i) const;
    [[nodiscard]] bool isFollowedDirectly(qsizetype i) const
    {
        return i + 1 < m_elements.size() && m_isDirect[size_t(i + 1)];
    }

    const QList<FNElement> &m_elements;
    bool m_withNumbers;
    std::vector<bool> m_isDirect;         ///< no empty line stands in front
    std::vector<bool> m_isInSpeech;       ///< directly below a speaker, or in front of more that is said
    std::vector<qsizetype> m_nextSpeaker; ///< the next one behind, or -1
    bool m_hasFirstOfTwo = false;         ///< a speaker with whom the next one speaks at once
};

BodyWriter::BodyWriter(const FNScript &script)
    : m_elements(script.elements)
    , m_withNumbers(!script.suppressSceneNumbers)
{
    findPlaces();
}

// From the last element to the first, since what stands directly below an element is a matter of those behind it.
void BodyWriter::findPlaces()
{
    const qsizetype count = m_elements.size();
    m_isDirect.assign(size_t(count), false);
    m_isInSpeech.assign(size_t(count), false);
    m_nextSpeaker.assign(size_t(count), -1);
    bool wordsFollow = false;
    qsizetype speaker = -1;
    for (qsizetype i = count; i-- > 0;) {
        const FNElement &element = m_elements[i];
        const bool isSpeaker = element.is(FNType::Character);
        m_nextSpeaker[size_t(i)] = speaker;
        wordsFollow = !isSpeaker && (wordsFollow || (element.isSpoken() && !element.isBlank()));
        m_isInSpeech[size_t(i)] = wordsFollow;
        if (i > 0 && m_elements[i - 1].is(FNType::Character) && !m_elements[i - 1].elementText.startsWith(u'@'))
            m_isInSpeech[size_t(i)] = m_isInSpeech[size_t(i)] || standsBelowName(i);
        // After an empty line, its second line would be an element of its own, or it would be a heading.
        const bool isHeldUp =
            (element.is(FNType::Synopsis) && (element.elementText.contains(u'\n') || isFollowedDirectly(i))) ||
            (element.is(FNType::Transition) && !elementsOfBody(element.elementText).value(0).is(FNType::Transition) &&
             elementsBelowLine(element.elementText).value(0).is(FNType::Transition));
        // An empty line between two lines of a song is a line of the song.
        const bool isSungOn =
            element.is(FNType::Lyrics) && i > 0 && m_elements[i - 1].is(FNType::Lyrics) && !m_elements[i - 1].isBlank();
        m_isDirect[size_t(i)] = m_isInSpeech[size_t(i)] || isHeldUp || isSungOn;
        if (isSpeaker) speaker = i;
    }
}

// Of two who speak at once, the second has the mark, which a name with "@" cannot have, and no blanks behind its name.
// A third one in a row is marked as well.
bool BodyWriter::isDualSecond(qsizetype i)
{
    const FNElement &element = m_elements[i];
    if (!element.is(FNType::Character)) return false;
    const auto canBeSecond = [this](qsizetype speaker) {
        if (speaker < 0 || !m_elements[speaker].isDualDialogue) return false;
        const QString &name = m_elements[speaker].elementText;
        return name.isEmpty() || (!name.startsWith(u'@') && !name.back().isSpace());
    };
    const bool isSecond = canBeSecond(i) && (m_hasFirstOfTwo || !canBeSecond(m_nextSpeaker[size_t(i)]));
    m_hasFirstOfTwo = element.isDualDialogue && !isSecond;
    return isSecond;
}

// A speaker's name needs a line below, and what stands directly below a line needs that line.
bool BodyWriter::isWritten(qsizetype i) const
{
    const FNElement &element = m_elements[i];
    if (element.is(FNType::PageBreak) || !element.isBlank()) return true;
    const bool belowName = i > 0 && m_elements[i - 1].is(FNType::Character) && m_isDirect[size_t(i)];
    return !element.is(FNType::Lyrics) && (belowName || isFollowedDirectly(i));
}

// A name needs a line directly below.
bool BodyWriter::standsBelowName(qsizetype i) const
{
    const QStringList forms = formsOf(m_elements[i], m_withNumbers);
    return m_elements[i].is(FNType::PageBreak) ||
           std::ranges::any_of(forms, [&](const QString &form) { return readsAs(elementsBelowSpeaker(form), i); });
}

bool BodyWriter::readsAs(const QList<FNElement> &read, qsizetype i) const
{
    const FNElement &wanted = m_elements[i];
    if (read.size() != 1) return false;
    FNElement first = read.first();
    if (!m_withNumbers) first.sceneNumber = wanted.sceneNumber;
    first.isDualDialogue = wanted.isDualDialogue;
    return first == wanted;
}

bool BodyWriter::readsBack(const QString &form, qsizetype i, bool hasLineBelow) const
{
    if (m_elements[i].is(FNType::Character) && hasLineBelow)
        return readsAs(elementsOfBody(form + QStringLiteral("\nx")).mid(0, 1), i);
    if (m_isInSpeech[size_t(i)]) return readsAs(elementsBelowSpeaker(form), i);
    return readsAs(m_isDirect[size_t(i)] ? elementsBelowLine(form) : elementsOfBody(form), i);
}

// One form alone needs no trial, and neither does what is said.
QString BodyWriter::formThatReadsBack(qsizetype i, bool isSecond) const
{
    const QString &text = m_elements[i].elementText;
    const QStringList forms =
        isSecond ? QStringList{text + u" ^", text + u'^', text + u" ^"} : formsOf(m_elements[i], m_withNumbers);
    if (forms.size() == 1) return forms.first();
    for (const QString &form : forms)
        if (readsBack(form, i, isSecond || isFollowedDirectly(i))) return form;
    return forms.last();
}

QString BodyWriter::body()
{
    QString text;
    for (qsizetype i = 0; i < m_elements.size(); ++i) {
        const bool isSecond = isDualSecond(i);
        if (!isWritten(i)) continue;
        QString form = formThatReadsBack(i, isSecond);
        // The forced form of a name knows no second speaker, so that the line that a name needs is an empty comment.
        if (isSecond && !isFollowedDirectly(i)) form += QStringLiteral("\n/**/");
        const bool follows = m_isDirect[size_t(i)] || m_elements[i].is(FNType::Comment);
        if (!follows) text += u'\n';
        text += form + u'\n';
    }
    return text;
}

} // namespace

// A body whose first lines would be taken for a title page, or whose first blanks would be dropped, needs something in
// front of it that is on no page.
static QString withoutTitlePage(const QString &body)
{
    QString text = body + QStringLiteral("\n\n");
    const bool isTaken = body.startsWith(u' ') || body.startsWith(u'\t') || !takeTitlePage(text).isEmpty();
    return isTaken ? QStringLiteral("/**/\n\n") + body : body;
}

QString FountainWriter::documentFromScript(const FNScript &script)
{
    const QString titlePage = titlePageFromScript(script);
    const QString body = bodyFromScript(script);
    if (titlePage.isEmpty()) return withoutTitlePage(body.startsWith(u'\n') ? body.sliced(1) : body);
    return body.startsWith(u'\n') || body.isEmpty() ? titlePage + body : QString(titlePage + u'\n' + body);
}

QString FountainWriter::titlePageFromScript(const FNScript &script)
{
    return textOfTitlePage(script.titlePage);
}

QString FountainWriter::bodyFromScript(const FNScript &script)
{
    return BodyWriter(script).body();
}

} // namespace tomelet
