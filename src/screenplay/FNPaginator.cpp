// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenplay/FNPaginator.h"

#include <limits>
#include <utility>

namespace tomelet {

// -- measures ---------------------------------------------------------------------------------------------------------

static bool isSetFull(const FNElement &element)
{
    return element.is(FNType::Action) || element.is(FNType::SceneHeading) || element.is(FNType::General) ||
           element.is(FNType::Transition);
}

int FNPaginator::spaceBeforeForElement(const FNElement &element)
{
    if (element.is(FNType::SceneHeading)) return 2;
    return isSetFull(element) || element.is(FNType::Character) ? 1 : 0;
}

int FNPaginator::leftMarginForElement(const FNElement &element)
{
    if (isSetFull(element)) return 106;
    if (element.is(FNType::Character)) return 247;
    if (element.is(FNType::Dialogue)) return 177;
    return element.is(FNType::Parenthetical) ? 205 : 0;
}

int FNPaginator::widthForElement(const FNElement &element)
{
    if (isSetFull(element)) return 430;
    if (element.is(FNType::Character) || element.is(FNType::Dialogue)) return 250;
    return element.is(FNType::Parenthetical) ? 212 : 0;
}

int FNPaginator::heightForString(const QString &string, const FNFont &font, int maxWidth, int lineHeight)
{
    constexpr int all = std::numeric_limits<int>::max();
    return FNMeasuredText(string).lines(0, columnsInWidth(font, maxWidth), all) * lineHeight;
}

// -- blocks -----------------------------------------------------------------------------------------------------------

namespace {

const QString more = QStringLiteral("(MORE)");
const QString continuedMark = QStringLiteral("(CONT'D)");
constexpr int moreLines = 2;     // with the empty line in front
constexpr int mostNameLines = 4; // a longer name would fill the pages that it stands on again

/// What stays together as far as it can: a heading if there is one, [begin, body), and what follows it, [body, end).
struct Block
{
    enum Kind { Plain, Speech, Dual } kind;
    qsizetype begin, body, end;
};

/// A place in the script; `offset` is one in the element's text.
struct Position
{
    qsizetype element, offset = 0;
    friend bool operator==(const Position &, const Position &) = default;
};

/// How far a block fits on a page, and the lines that this takes. Not at all when it goes no further than it began.
struct Fit
{
    Position upTo;
    int lines = 0;
};

class PageMaker
{
public:
    PageMaker(const QList<FNElement> &elements, int linesOfPage)
        : m_elements(elements)
        , m_linesOfPage(linesOfPage)
    {}
    [[nodiscard]] QList<FNPaginator::Page> pages();

private:
    [[nodiscard]] qsizetype nextShown(qsizetype from) const;
    [[nodiscard]] qsizetype endOfSpeech(qsizetype speaker) const;
    [[nodiscard]] Block blockAt(qsizetype begin);
    [[nodiscard]] Block speechAt(qsizetype begin, qsizetype speaker);

    [[nodiscard]] const FNMeasuredText &measured(qsizetype element);
    [[nodiscard]] int linesOf(qsizetype element, qsizetype offset, int most);
    [[nodiscard]] int spaceBefore(qsizetype element, int linesAbove) const;
    [[nodiscard]] bool beginsSong(qsizetype element) const;
    [[nodiscard]] int linesBesideEachOther(qsizetype begin, qsizetype end, qsizetype second);

    [[nodiscard]] int room() const { return m_linesOfPage - m_used; }
    [[nodiscard]] bool pageIsEmpty() const { return m_used == 0; }
    [[nodiscard]] Fit fit(const Block &block, Position from);
    [[nodiscard]] Fit fitWhole(const Block &block, Position from, int lines);
    [[nodiscard]] Fit fitPlain(const Block &block, Position from, int lines);
    [[nodiscard]] Fit fitSpeech(const Block &block, Position from, int lines);
    [[nodiscard]] qsizetype cut(Position from, int lines, bool anywhere);

    void place(const Block &block);
    void write(const Block &block, Position from, Position upTo);
    void append(const Block &block, qsizetype element, qsizetype from, qsizetype to);
    void placeUnlaid(const FNElement &element);
    void endPage();

    const QList<FNElement> &m_elements;
    int m_linesOfPage;
    int m_used = 0; ///< lines of the page
    FNPaginator::Page m_page;
    QList<FNPaginator::Page> m_pages;
    qsizetype m_measuredElement = -1;
    FNMeasuredText m_measured{QString()};
};

QString continuedName(const QString &name)
{
    return name.trimmed().endsWith(continuedMark, Qt::CaseInsensitive) ? name : QString(name + u' ' + continuedMark);
}

// Songs have no place of their own among the measures: they stand where speeches do.
int columnsOf(const FNElement &element)
{
    constexpr int songWidth = 250;
    const int width = FNPaginator::widthForElement(element);
    return columnsInWidth(FNFont(), width > 0 ? width : songWidth);
}

bool takesLines(const FNElement &element)
{
    return !element.isHidden() && !element.is(FNType::PageBreak);
}

bool canBeDivided(const FNElement &element)
{
    return element.is(FNType::Action) || element.is(FNType::General) || element.is(FNType::Dialogue);
}

qsizetype PageMaker::nextShown(qsizetype from) const
{
    while (from < m_elements.size() && m_elements[from].isHidden()) ++from;
    return from;
}

qsizetype PageMaker::endOfSpeech(qsizetype speaker) const
{
    qsizetype end = speaker + 1;
    for (qsizetype i = end; i < m_elements.size() && (m_elements[i].isHidden() || m_elements[i].isSpoken()); ++i)
        if (m_elements[i].isSpoken()) end = i + 1;
    return end;
}

Block PageMaker::speechAt(qsizetype begin, qsizetype speaker)
{
    const qsizetype end = endOfSpeech(speaker);
    const qsizetype second = nextShown(end);
    const auto isDual = [&](qsizetype i) {
        return i < m_elements.size() && m_elements[i].is(FNType::Character) && m_elements[i].isDualDialogue;
    };
    if (isDual(speaker) && isDual(second)) {
        const qsizetype endOfBoth = endOfSpeech(second);
        if (linesBesideEachOther(speaker, endOfBoth, second) <= m_linesOfPage)
            return {Block::Dual, begin, speaker, endOfBoth};
    }
    return {Block::Speech, begin, speaker, end};
}

// A heading stays with the first element behind it that is shown.
Block PageMaker::blockAt(qsizetype begin)
{
    qsizetype body = begin;
    if (m_elements[begin].is(FNType::SceneHeading)) {
        const qsizetype next = nextShown(begin + 1);
        const bool isHeld = next < m_elements.size() && !m_elements[next].is(FNType::SceneHeading) &&
                            !m_elements[next].is(FNType::PageBreak);
        if (isHeld) body = next;
    }
    if (m_elements[body].is(FNType::Character)) return speechAt(begin, body);
    return {Block::Plain, begin, body, body + 1};
}

// -- lines of elements ------------------------------------------------------------------------------------------------

const FNMeasuredText &PageMaker::measured(qsizetype element)
{
    if (m_measuredElement != element) m_measured = FNMeasuredText(m_elements[element].elementText);
    m_measuredElement = element;
    return m_measured;
}

int PageMaker::linesOf(qsizetype element, qsizetype offset, int most)
{
    const FNElement &wanted = m_elements[element];
    return takesLines(wanted) ? measured(element).lines(offset, columnsOf(wanted), most) : 0;
}

int PageMaker::spaceBefore(qsizetype element, int linesAbove) const
{
    if (pageIsEmpty() && linesAbove == 0) return 0;
    return beginsSong(element) ? 1 : FNPaginator::spaceBeforeForElement(m_elements[element]);
}

// Its lines have no space between them, and neither has what a speaker sings.
bool PageMaker::beginsSong(qsizetype element) const
{
    if (!m_elements[element].is(FNType::Lyrics)) return false;
    qsizetype above = element - 1;
    while (above >= 0 && m_elements[above].isHidden()) --above;
    if (above < 0) return false;
    const FNElement &last = m_elements[above];
    return !last.is(FNType::Lyrics) && !last.is(FNType::Character) && !last.is(FNType::Parenthetical);
}

// Two columns in the width of action.
int PageMaker::linesBesideEachOther(qsizetype begin, qsizetype end, qsizetype second)
{
    constexpr int columnWidth = 205, insideWidth = 181;
    const int most = m_linesOfPage + 1;
    int columns[] = {1, 1}; // the empty line above
    for (qsizetype i = begin; i < end; ++i) {
        int &lines = columns[i < second ? 0 : 1];
        const int width = m_elements[i].is(FNType::Parenthetical) ? insideWidth : columnWidth;
        if (takesLines(m_elements[i]) && lines < most)
            lines += measured(i).lines(0, columnsInWidth(FNFont(), width), most);
    }
    return qMax(columns[0], columns[1]);
}

// -- what fits on the page --------------------------------------------------------------------------------------------

// Where the text is divided that has so many lines: at the end of a sentence, or of a line where that is allowed.
// `from.offset` when it is not.
qsizetype PageMaker::cut(Position from, int lines, bool anywhere)
{
    if (lines <= 0) return from.offset;
    const FNMeasuredText &text = measured(from.element);
    const qsizetype end = text.endOfLines(from.offset, columnsOf(m_elements[from.element]), lines);
    const qsizetype sentences = text.endOfSentences(from.offset, end);
    const bool isInside = end < m_elements[from.element].elementText.size();
    return sentences > from.offset || !anywhere || !isInside ? sentences : end;
}

// `lines` are those of the heading.
Fit PageMaker::fitWhole(const Block &block, Position from, int lines)
{
    for (qsizetype i = block.body; i < block.end && lines <= room(); ++i)
        lines += spaceBefore(i, lines) + linesOf(i, 0, m_linesOfPage + 1);
    return lines <= room() || pageIsEmpty() ? Fit{{block.end}, lines} : Fit{from};
}

Fit PageMaker::fitPlain(const Block &block, Position from, int lines)
{
    const Position start = from.element < block.body ? Position{block.body} : from;
    const int above = lines + (start.offset > 0 ? 0 : spaceBefore(start.element, lines));
    const int needed = linesOf(start.element, start.offset, m_linesOfPage + 1);
    if (above + needed <= room()) return {{block.end}, above + needed};
    if (!canBeDivided(m_elements[start.element])) return {from};
    const qsizetype end = cut(start, room() - above, pageIsEmpty());
    return end > start.offset ? Fit{{start.element, end}, room()} : Fit{from};
}

Fit PageMaker::fitSpeech(const Block &block, Position from, int lines)
{
    const bool isContinued = from.element > block.body;
    const QString &name = m_elements[block.body].elementText;
    const int nameLines = FNMeasuredText(isContinued ? continuedName(name) : name)
                              .lines(0, columnsOf(m_elements[block.body]), mostNameLines + 1);
    if (nameLines > mostNameLines) return fitWhole(block, from, lines);
    lines += spaceBefore(block.body, lines) + nameLines;

    Position start = isContinued ? from : Position{block.body + 1};
    Position best = from;
    for (; start.element < block.end; start = {start.element + 1}) {
        const int needed = linesOf(start.element, start.offset, m_linesOfPage + 1);
        // A page does not end between how something is said and what.
        if (m_elements[start.element].is(FNType::Dialogue)) {
            const int roomForMore = room() - lines - moreLines;
            const bool isLast = start.element + 1 == block.end;
            if (needed <= roomForMore && !isLast) best = {start.element + 1};
            else if (const qsizetype end = cut(start, roomForMore, pageIsEmpty() && best == from); end > start.offset)
                best = {start.element, end};
        }
        lines += needed;
        if (lines <= room()) continue;
        if (best != from || !pageIsEmpty()) return {best, room()};
        return {{start.element + 1}, lines};
    }
    return lines <= room() ? Fit{{block.end}, lines} : Fit{from};
}

Fit PageMaker::fit(const Block &block, Position from)
{
    int lines = 0;
    for (qsizetype i = from.element; i < block.body; ++i)
        lines += spaceBefore(i, lines) + linesOf(i, 0, m_linesOfPage + 1);
    if (lines >= room() && from.element < block.body) return {from};
    if (block.kind == Block::Plain) return fitPlain(block, from, lines);
    if (block.kind == Block::Speech) return fitSpeech(block, from, lines);
    const qsizetype second = nextShown(endOfSpeech(block.body));
    const int height = lines + linesBesideEachOther(block.body, block.end, second);
    return height <= room() || pageIsEmpty() ? Fit{{block.end}, height} : Fit{from};
}

// -- pages ------------------------------------------------------------------------------------------------------------

void PageMaker::append(const Block &block, qsizetype element, qsizetype from, qsizetype to)
{
    FNElement copy = m_elements[element];
    copy.elementText = copy.elementText.sliced(from, to - from);
    if (block.kind == Block::Speech) copy.isDualDialogue = false; // nobody speaks beside
    m_page.append(copy);
}

void PageMaker::write(const Block &block, Position from, Position upTo)
{
    const bool isSpeech = block.kind == Block::Speech;
    if (isSpeech && from.element > block.body)
        m_page.append(FNElement::elementOfType(FNType::Character, continuedName(m_elements[block.body].elementText)));
    for (qsizetype i = from.element; i < upTo.element; ++i)
        append(block, i, i == from.element ? from.offset : 0, m_elements[i].elementText.size());
    if (upTo.offset > 0) append(block, upTo.element, upTo.element == from.element ? from.offset : 0, upTo.offset);
    if (isSpeech && upTo.element > block.body && upTo.element < block.end)
        m_page.append(FNElement::elementOfType(FNType::Character, more));
}

void PageMaker::endPage()
{
    m_pages.append(std::exchange(m_page, {}));
    m_used = 0;
}

void PageMaker::place(const Block &block)
{
    for (Position at{block.begin}; at.element < block.end;) {
        Fit found = fit(block, at);
        // No page stays empty for want of room.
        if (found.upTo == at && pageIsEmpty()) found.upTo = {at.element < block.body ? block.body : at.element + 1};
        if (found.upTo != at) write(block, at, found.upTo);
        at = found.upTo;
        m_used += qMax(1, found.lines);
        if (at.element < block.end) endPage();
    }
}

// What is not shown goes along with what stands in front of it.
void PageMaker::placeUnlaid(const FNElement &element)
{
    m_page.append(element);
    if (element.is(FNType::PageBreak) && !pageIsEmpty()) endPage();
}

QList<FNPaginator::Page> PageMaker::pages()
{
    for (qsizetype i = 0; i < m_elements.size();) {
        if (!takesLines(m_elements[i])) {
            placeUnlaid(m_elements[i++]);
            continue;
        }
        const Block block = blockAt(i);
        place(block);
        i = block.end;
    }
    if (pageIsEmpty() && !m_pages.isEmpty()) m_pages.last() += m_page; // nothing that shows
    else if (!m_page.isEmpty()) endPage();
    return m_pages;
}

} // namespace

FNPaginator FNPaginator::initWithScript(const FNScript &script)
{
    FNPaginator paginator;
    paginator.m_script = script;
    return paginator;
}

void FNPaginator::paginate()
{
    paginateForSize({612, 792});
}

void FNPaginator::paginateForSize(QSizeF size)
{
    constexpr int margins = 145; // above and below
    const int lineHeight = int(FNFont().pointSize);
    const int usable = int(size.height()) - margins;
    m_pages = PageMaker(m_script.elements, qMax(1, usable / lineHeight)).pages();
}

} // namespace tomelet
