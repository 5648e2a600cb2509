// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenplay/FastFountainParser.h"

#include "conversion/RegexLayer.h"
#include "foundation/Log.h"
#include "foundation/SafeWriter.h"
#include "foundation/TextCodec.h"

#include <utility>

namespace tomelet {

namespace {

// -- lines ------------------------------------------------------------------------------------------------------------
// Where a pattern would go over a long line again from each of its places, the line is looked at by hand.

QStringView withoutEndBlanks(QStringView line)
{
    while (!line.isEmpty() && line.back().isSpace()) line.chop(1);
    return line;
}

QStringView withoutStartBlanks(QStringView line)
{
    while (!line.isEmpty() && line.front().isSpace()) line = line.sliced(1);
    return line;
}

bool endsComment(const QString &line)
{
    return withoutEndBlanks(line).endsWith(u"*/");
}

// "[[text]]" on a line of its own, without "]" in it.
bool isNote(const QString &line)
{
    const QStringView note = QStringView(line).trimmed();
    return note.size() > 4 && note.startsWith(u"[[") && note.endsWith(u"]]") &&
           !note.sliced(2, note.size() - 4).contains(u']');
}

bool isHeading(const QString &line)
{
    static const QString pattern = QStringLiteral("^(INT|EXT|EST|(I|INT)\\.?\\/(E|EXT)\\.?)[\\.\\-\\s][^\\n]+$");
    return isMatchedByRegex(line, pattern, RKLCaseless, wholeRange);
}

bool isTransition(const QString &line)
{
    static const QString pattern = QStringLiteral("TO:$");
    const QStringView text = withoutStartBlanks(line);
    return isMatchedByRegex(line, pattern) || text == u"FADE OUT." || text == u"CUT TO BLACK." ||
           text == u"FADE TO BLACK.";
}

bool isInCapitals(const QString &line)
{
    static const QString pattern = QStringLiteral("^[^a-z]+(\\(cont'd\\))?$");
    return isMatchedByRegex(line, pattern);
}

// Takes "#12#" from the end of a heading; the blank in front of it stays.
std::optional<QString> takeSceneNumber(QString &heading)
{
    static const QString pattern = QStringLiteral("#([^\\n#]*?)#\\s*$");
    if (!heading.contains(u'#')) return std::nullopt;
    const Range whole = rangeOfRegex(heading, pattern);
    if (!whole.isFound()) return std::nullopt;
    const QString number = stringByMatching(heading, pattern, 1);
    heading.truncate(whole.location);
    return number.isNull() ? QStringLiteral("") : number;
}

// -- the walk over the lines ------------------------------------------------------------------------------------------

class BodyReader
{
public:
    void read(const QStringList &lines);
    void readLine(const QString &line, const QString &next);

    QList<FNElement> elements;

private:
    // In the order in which they are asked; the first one that takes the line decides.
    bool lyrics(const QString &line);
    bool forcedAction(const QString &line);
    bool forcedCharacter(const QString &line);
    bool blanks(const QString &line);
    bool emptyLine(const QString &line);
    bool boneyard(const QString &line);
    bool insideComment(const QString &line);
    bool pageBreak(const QString &line);
    bool synopsis(const QString &line);
    bool note(const QString &line);
    bool section(const QString &line);
    bool forcedHeading(const QString &line);
    bool heading(const QString &line);
    bool transition(const QString &line);
    bool centered(const QString &line);
    bool afterEmptyLine(const QString &line);
    bool parenthetical(const QString &line);
    bool spoken(const QString &line);
    bool continued(const QString &line);

    FNElement &add(QLatin1StringView type, const QString &text);
    void addHeading(QString line, bool isForced);
    void character(QString line);
    void dialogue(const QString &line);
    [[nodiscard]] bool lastIs(QLatin1StringView type) const { return !elements.isEmpty() && elements.last().is(type); }

    int m_newlinesBefore = 0;
    bool m_isCommentBlock = false;
    bool m_staysInComment = false; ///< of the line at hand
    bool m_isInsideDialogueBlock = false;
    QString m_comment;
    QString m_next; ///< the line behind the one at hand; "" for none
};

FNElement &BodyReader::add(QLatin1StringView type, const QString &text)
{
    m_newlinesBefore = 0;
    elements.append(FNElement::elementOfType(type, text));
    return elements.last();
}

bool BodyReader::lyrics(const QString &line)
{
    if (!line.startsWith(u'~')) return false;
    if (lastIs(FNType::Lyrics) && m_newlinesBefore > 0) add(FNType::Lyrics, QStringLiteral(" "));
    add(FNType::Lyrics, line);
    return true;
}

bool BodyReader::forcedAction(const QString &line)
{
    if (!line.startsWith(u'!')) return false;
    add(FNType::Action, line);
    return true;
}

bool BodyReader::forcedCharacter(const QString &line)
{
    if (!line.startsWith(u'@')) return false;
    add(FNType::Character, line);
    m_isInsideDialogueBlock = true;
    return true;
}

// Two blanks keep a speech together that would end at an empty line.
bool BodyReader::blanks(const QString &line)
{
    static const QString two = QStringLiteral("^\\s{2}$");
    static const QString any = QStringLiteral("^\\s{2,}$");
    if (line.isEmpty() || !line.front().isSpace()) return false;
    if (m_isInsideDialogueBlock && isMatchedByRegex(line, two)) dialogue(line);
    else if (isMatchedByRegex(line, any)) add(FNType::Action, line);
    else return false;
    return true;
}

bool BodyReader::emptyLine(const QString &line)
{
    if (!line.isEmpty() || m_isCommentBlock) return false;
    m_isInsideDialogueBlock = false;
    ++m_newlinesBefore;
    return true;
}

// What stands beside a mark that opens or closes a longer comment is dropped.
bool BodyReader::boneyard(const QString &line)
{
    const bool opens = line.startsWith(u"/*");
    if (endsComment(line)) {
        if (opens) add(FNType::Boneyard, line.sliced(2, qMax(2, line.lastIndexOf(u"*/")) - 2));
        else add(FNType::Boneyard, std::exchange(m_comment, {}));
        return true;
    }
    if (!opens) return false;
    m_comment += u'\n';
    m_staysInComment = true;
    return true;
}

bool BodyReader::insideComment(const QString &line)
{
    if (!m_isCommentBlock) return false;
    m_comment += line + u'\n';
    m_staysInComment = true;
    return true;
}

bool BodyReader::pageBreak(const QString &line)
{
    static const QString pattern = QStringLiteral("^={3,}\\s*$");
    if (!isMatchedByRegex(line, pattern)) return false;
    add(FNType::PageBreak, line);
    return true;
}

bool BodyReader::synopsis(const QString &line)
{
    const QStringView text = withoutStartBlanks(line);
    if (!text.startsWith(u'=')) return false;
    const int before = m_newlinesBefore;
    add(FNType::Synopsis, text.sliced(1).toString());
    m_newlinesBefore = before;
    return true;
}

bool BodyReader::note(const QString &line)
{
    if (m_newlinesBefore == 0 || !isNote(line)) return false;
    const int before = m_newlinesBefore;
    add(FNType::Comment, QString(line)
                             .replace(QLatin1StringView("[["), QString())
                             .replace(QLatin1StringView("]]"), QString())
                             .trimmed());
    m_newlinesBefore = before;
    return true;
}

// Blanks in front of the signs count for the depth.
bool BodyReader::section(const QString &line)
{
    const QStringView signs = withoutStartBlanks(line);
    if (!signs.startsWith(u'#')) return false;
    qsizetype depth = line.size() - signs.size();
    while (depth < line.size() && line[depth] == u'#') ++depth;
    if (depth == line.size()) {
        logLine(QStringLiteral("Error in the Section Heading"));
        return true;
    }
    add(FNType::SectionHeading, line.sliced(depth)).sectionDepth = int(depth);
    return true;
}

void BodyReader::addHeading(QString line, bool isForced)
{
    const auto number = takeSceneNumber(line);
    add(FNType::SceneHeading, isForced ? line.sliced(1).trimmed() : line).sceneNumber = number;
}

bool BodyReader::forcedHeading(const QString &line)
{
    if (line.size() < 2 || line[0] != u'.' || line[1] == u'.') return false;
    addHeading(line, true);
    return true;
}

bool BodyReader::heading(const QString &line)
{
    if (m_newlinesBefore == 0 || !isHeading(line)) return false;
    addHeading(line, false);
    return true;
}

bool BodyReader::transition(const QString &line)
{
    if (!isTransition(line)) return false;
    add(FNType::Transition, line);
    return true;
}

bool BodyReader::centered(const QString &line)
{
    if (!line.startsWith(u'>')) return false;
    if (line.size() >= 2 && line.endsWith(u'<'))
        add(FNType::Action, line.sliced(1, line.size() - 2).trimmed()).isCentered = true;
    else add(FNType::Transition, line.sliced(1).trimmed());
    return true;
}

// A speaker needs somebody's words below.
bool BodyReader::afterEmptyLine(const QString &line)
{
    if (m_newlinesBefore == 0) return false;
    if (!m_next.isEmpty() && isInCapitals(line)) character(line);
    else if (m_isInsideDialogueBlock) dialogue(line);
    else add(FNType::Action, line);
    return true;
}

// A "^" behind the name: this speaker and the one before speak at once.
void BodyReader::character(QString line)
{
    const QStringView text = withoutEndBlanks(line);
    const bool isDual = text.endsWith(u'^');
    if (isDual) {
        line.truncate(withoutEndBlanks(text.chopped(1)).size());
        for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
            if (!element->is(FNType::Character)) continue;
            element->isDualDialogue = true;
            break;
        }
    }
    add(FNType::Character, line).isDualDialogue = isDual;
    m_isInsideDialogueBlock = true;
}

bool BodyReader::parenthetical(const QString &line)
{
    if (m_newlinesBefore > 0 || !m_isInsideDialogueBlock || !withoutStartBlanks(line).startsWith(u'(')) return false;
    add(FNType::Parenthetical, line);
    return true;
}

void BodyReader::dialogue(const QString &line)
{
    if (lastIs(FNType::Dialogue)) elements.last().elementText += u'\n' + line;
    else add(FNType::Dialogue, line);
    m_newlinesBefore = 0;
}

bool BodyReader::spoken(const QString &line)
{
    if (!m_isInsideDialogueBlock) return false;
    dialogue(line);
    return true;
}

// A heading without an empty line below is no heading.
bool BodyReader::continued(const QString &line)
{
    if (elements.isEmpty()) {
        add(FNType::Action, line);
        return true;
    }
    FNElement &last = elements.last();
    if (last.is(FNType::SceneHeading)) last.elementType = FNType::Action;
    last.elementText += u'\n' + line;
    m_newlinesBefore = 0;
    return true;
}

void BodyReader::readLine(const QString &line, const QString &next)
{
    using Rule = bool (BodyReader::*)(const QString &);
    static constexpr Rule rules[] = {
        &BodyReader::lyrics,         &BodyReader::forcedAction,  &BodyReader::forcedCharacter,
        &BodyReader::blanks,         &BodyReader::emptyLine,     &BodyReader::boneyard,
        &BodyReader::insideComment,  &BodyReader::pageBreak,     &BodyReader::synopsis,
        &BodyReader::note,           &BodyReader::section,       &BodyReader::forcedHeading,
        &BodyReader::heading,        &BodyReader::transition,    &BodyReader::centered,
        &BodyReader::afterEmptyLine, &BodyReader::parenthetical, &BodyReader::spoken,
        &BodyReader::continued,
    };
    m_next = next;
    m_staysInComment = false;
    for (const Rule rule : rules)
        if ((this->*rule)(line)) break;
    m_isCommentBlock = m_staysInComment;
}

void BodyReader::read(const QStringList &lines)
{
    for (qsizetype i = 0; i < lines.size(); ++i) readLine(lines[i], lines.value(i + 1));
}

} // namespace

QList<FNElement> elementsOfBody(const QString &body)
{
    BodyReader reader;
    reader.read(QString(u'\n' + body).split(u'\n'));
    return reader.elements;
}

QList<FNElement> elementsBelowLine(const QString &body)
{
    return elementsOfBody(QStringLiteral("!\n") + body).mid(1);
}

QList<FNElement> elementsBelowSpeaker(const QString &body)
{
    return elementsOfBody(QStringLiteral("@\n") + body).mid(1);
}

FastFountainParser FastFountainParser::initWithFile(const QString &path)
{
    const auto bytes = readFile(path);
    const auto text = bytes ? decodeTextAs(*bytes, TextEncoding::Utf8) : std::nullopt;
    if (text) return initWithString(*text);
    logLine(QStringLiteral("Couldn't read the file %1").arg(path));
    return {};
}

FastFountainParser FastFountainParser::initWithString(const QString &text)
{
    FastFountainParser parser;
    parser.parseContents(text);
    return parser;
}

void FastFountainParser::parseContents(const QString &contents)
{
    const QStringView marked = contents;
    const bool hasMark = marked.startsWith(QChar(QChar::ByteOrderMark));
    QString text = withoutStartBlanks(hasMark ? marked.sliced(1) : marked).toString();
    text.replace(QLatin1StringView("\r\n"), QLatin1StringView("\n")).replace(u'\r', u'\n');
    text += QStringLiteral("\n\n");
    titlePage = takeTitlePage(text);
    elements = elementsOfBody(text);
}

} // namespace tomelet
