// SPDX-License-Identifier: GPL-3.0-or-later
// The formatted editor in a real page: what commands make of it, undoing them, and what goes back into the
// file.
#include "tests/support/Notebook.h"

#include "conversion/MarkdownToHtml.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/page/FormattingBar.h"
#include "desktop/page/FormattingCommands.h"
#include "desktop/page/TMLTWebView.h"
#include "editor/PageBody.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Properties.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QFileInfo>
#include <QImage>
#include <QMimeData>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QWebEnginePage>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class FormattedEditing : public tomelet::test::Notebook
{
protected:
    void open(const QString &body)
    {
        path = at(QStringLiteral("/Note.html"));
        ASSERT_TRUE(writeFile(path, tm_createFormattedDocWithBody(path, body).toUtf8()));
        show();
    }
    void show()
    {
        pane.resize(800, 600);
        pane.show();
        QSignalSpy ready(pane.view(), &TMLTWebView::ready);
        pane.showDocument(path);
        ASSERT_TRUE(ready.wait(20000));
        Q_EMIT pane.view()->editingWanted(false);
        ASSERT_TRUE(pane.view()->isEditing());
        pane.view()->waitForPage();
    }
    // Places are in the first text of an element, or in the element when it has none.
    void select(const QString &from, int start, const QString &to, int end)
    {
        script(QStringLiteral("{ const e = s => document.querySelector(s); const t = n => n.firstChild || n;"
                              "getSelection().setBaseAndExtent(t(e('%1')), %2, t(e('%3')), %4); }")
                   .arg(from)
                   .arg(start)
                   .arg(to)
                   .arg(end));
    }
    QVariant script(const QString &text)
    {
        QVariant result;
        QEventLoop loop;
        pane.view()->page()->runJavaScript(text, 1, [&](const QVariant &answer) {
            result = answer;
            loop.quit();
        });
        loop.exec();
        return result;
    }
    QString after(const QString &command, const QString &argument = {})
    {
        return afterScript(scriptOfCommand(command, argument));
    }
    QString afterScript(const QString &text)
    {
        pane.view()->run(text);
        pane.view()->waitForPage();
        return body();
    }
    [[nodiscard]] QString body()
    {
        return pane.view()->innerHTML().trimmed().remove(QRegularExpression(QStringLiteral(" tmtableid=\"\\d+\"")));
    }
    // What the engine does in its own time.
    template <typename Condition>
    static bool comes(Condition condition)
    {
        return QTest::qWaitFor(condition, 20000);
    }
    void undoAll(int steps)
    {
        for (int i = 0; i < steps; ++i) pane.view()->undo();
        pane.view()->waitForPage();
    }
    // What takes the keys. A page that is not in front yet drops them.
    QWidget *keyTaker()
    {
        QWidget *keys = pane.view()->focusProxy();
        pane.activateWindow();
        keys->setFocus();
        EXPECT_TRUE(comes([this] { return script(QStringLiteral("document.hasFocus()")).toBool(); }));
        return keys;
    }
    ItemActions actions;
    DocumentPane pane{actions};
    QString path;
};

} // namespace

namespace {

struct Row
{
    const char *name;
    const char *body;
    const char *from;
    int start;
    const char *to;
    int end;
    const char *script;
    const char *after;
};

constexpr const char *table =
    "<table><tbody><tr><th>a</th><th>b</th></tr><tr><td>1</td><td>2</td></tr></tbody></table>";

// Two rows high on the left, two columns wide at the bottom.
constexpr const char *spans = "<table><tbody><tr><td id='a' rowspan='2'>a</td><td id='b'>b</td><td id='c'>c</td></tr>"
                              "<tr><td id='d'>d</td><td id='e'>e</td></tr>"
                              "<tr><td id='f'>f</td><td id='g' colspan='2'>g</td></tr></tbody></table>";

constexpr const char *nested = "<ul><li id='a'>a</li><li id='b'>b<ul><li id='c'>c</li></ul></li></ul>";
constexpr const char *deep = "<ul><li id='a'>a<ul><li id='b' class='tm_checkbox'><input type='checkbox'><i>b</i></li>"
                             "<li>c</li></ul></li></ul>";

const Row rows[] = {
    {"bold", "<p>one two</p>", "p", 4, "p", 7, "document.execCommand('bold')", "<p>one <b>two</b></p>"},
    {"heading", "<p>one</p>", "p", 0, "p", 0, "document.execCommand('formatblock', false, 'h2')", "<h2>one</h2>"},
    {"list", "<p>one</p><p id='z'>two</p>", "p", 0, "#z", 3, "tm.toggleList()", "<ul><li>one</li><li>two</li></ul>"},
    {"numbers in the middle of a list", "<ul><li>one</li><li id='z'>two</li></ul>", "#z", 1, "#z", 1,
     "tm.setList(true)", "<ol><li>one</li><li id='z'>two</li></ol>"},
    {"joined paragraphs", "<h2>one</h2><p>two</p>", "p", 0, "p", 0, "document.execCommand('delete')",
     "<h2>onetwo</h2>"},
    {"numbers", "<ul><li>one</li></ul>", "li", 0, "li", 0, "tm.toggleList()", "<ol><li>one</li></ol>"},
    {"boxes", "<ul><li>one</li><li id='z'>two</li><li>three</li></ul>", "li", 0, "#z", 3, "tm.toggleBoxes()",
     "<ul><li class='tm_checkbox'><input type='checkbox'>one</li>"
     "<li id='z' class='tm_checkbox'><input type='checkbox'>two</li><li>three</li></ul>"},
    {"done", "<ul><li class='tm_checkbox'><i>one</i></li></ul>", "i", 1, "i", 1, "tm.toggleDone()",
     "<ul><li class='tm_checkbox_done'><i>one</i></li></ul>"},
    {"open", "<ul><li class='tm_checkbox_done'><input type='checkbox' checked=''><i>one</i></li></ul>", "i", 1, "i", 1,
     "tm.toggleDone()", "<ul><li class='tm_checkbox'><input type='checkbox'><i>one</i></li></ul>"},
    {"an item one level down", nested, "#b", 1, "#b", 1, "tm.tab(false)",
     "<ul><li id='a'>a<ul><li id='b'>b<ul><li id='c'>c</li></ul></li></ul></li></ul>"},
    {"an item one level up", deep, "i", 1, "i", 1, "tm.tab(true)",
     "<ul><li id='a'>a</li><li id='b' class='tm_checkbox'><input "
     "type='checkbox'><i>b</i><ul><li>c</li></ul></li></ul>"},
    {"an item of a list that stands in a list", "<ul><li>a</li><ul><li id='b'>b</li></ul></ul>", "#b", 1, "#b", 1,
     "tm.tab(true)", "<ul><li>a</li><li id='b'>b</li></ul>"},
    {"the first item stays on its level", nested, "#a", 1, "#a", 1, "tm.tab(false)", nested},
    {"no list, from a level below", deep, "i", 1, "i", 1, "tm.toggleList()",
     "<ul><li id='a'>a</li></ul><p><i>b</i></p><ul><li>c</li></ul>"},
    {"no list in the middle", "<ul><li>a</li><li id='b'>b</li><li>c</li></ul>", "#b", 1, "#b", 1, "tm.setList(false)",
     "<ul><li>a</li></ul><p>b</p><ul><li>c</li></ul>"},
    {"a heading in an item", deep, "i", 1, "i", 1, "tm.setBlock('h2')",
     "<ul><li id='a'>a<ul><li id='b' class='tm_checkbox'><input type='checkbox'><h2><i>b</i></h2></li><li>c</li></ul>"
     "</li></ul>"},
    {"a heading in an item no more", "<ul><li><h2>a</h2><p>b</p></li></ul>", "h2", 1, "h2", 1, "tm.setBlock('p')",
     "<ul><li>a<p>b</p></li></ul>"},
    {"code over paragraphs", "<p>one</p><p id='z'>two</p>", "p", 2, "#z", 1, "tm.code()",
     "<p>on<code>e</code></p><p id='z'><code>t</code>wo</p>"},
    {"code no more", "<p>on<code>e</code></p>", "code", 1, "code", 1, "tm.code()", "<p>one</p>"},
    {"another address", "<p><a href='x'>link</a></p>", "a", 2, "a", 2,
     "tm.wholeLink(); document.execCommand('createLink', false, 'y')", "<p><a href='y'>link</a></p>"},
    {"a highlight taken away", "<p>a <span style='background-color: rgb(255, 239, 138);'>b</span></p>", "span", 0,
     "span", 1,
     "document.execCommand('backColor', false, 'transparent'); document.execCommand('foreColor', false, 'inherit');",
     "<p>a b</p>"},
    {"black on highlights alone", "<p><font color='#000000'>a</font> <font color='#000000'>b</font></p>", "font", 0,
     "font", 1, "document.execCommand('backColor', false, '#ffef8a')",
     "<p><font color='#000000' style='background-color: rgb(255, 239, 138);'>a</font> b</p>"},
    {"no style of its own", "<p style='color:red'>a <span style='color:red'>b</span></p>", "p", 0, "span", 1,
     "tm.clearFormat()", "<p>a b</p>"},
    {"an inner list that is left", "<ul><li>a<ul><li>b</li><li id='z'><br></li></ul></li></ul>", "#z", 0, "#z", 0,
     "document.execCommand('insertParagraph')", "<ul><li>a<ul><li>b</li></ul></li><li><br></li></ul>"},
    {"a heading cut in two", "<h2 id='a'>one</h2>", "h2", 2, "h2", 2, "document.execCommand('insertParagraph')",
     "<h2 id='a'>on</h2><h2>e</h2>"},
    {"marks over paragraphs", "<p>one</p><p id='z'>two</p>", "p", 2, "#z", 1, "tm.enclose('(', ')')",
     "<p>on(e</p><p>t)wo</p>"},
    {"row below the heading", table, "th", 0, "th", 0, "tm.insertRow(true)",
     "<table><tbody><tr><th>a</th><th>b</th></tr><tr><td><br></td><td><br></td></tr>"
     "<tr><td>1</td><td>2</td></tr></tbody></table>"},
    {"column before", table, "td", 0, "td", 0, "tm.insertColumn(false)",
     "<table><tbody><tr><th><br></th><th>a</th><th>b</th></tr>"
     "<tr><td><br></td><td>1</td><td>2</td></tr></tbody></table>"},
    {"column inside of a span",
     "<table><tbody><tr><td colspan='2'>a</td></tr><tr><td>1</td><td id='z'>2</td></tr></tbody></table>", "#z", 0, "#z",
     0, "tm.insertColumn(false)",
     "<table><tbody><tr><td colspan='3'>a</td></tr><tr><td>1</td><td><br></td><td "
     "id='z'>2</td></tr></tbody></table>"},
    {"rows", table, "td", 0, "td", 0, "tm.removeRows()", "<table><tbody><tr><th>a</th><th>b</th></tr></tbody></table>"},
    {"columns", table, "td", 0, "td", 0, "tm.removeColumns()",
     "<table><tbody><tr><th>b</th></tr><tr><td>2</td></tr></tbody></table>"},
    {"row inside of a span", spans, "#b", 0, "#b", 0, "tm.insertRow(true)",
     "<table><tbody><tr><td id='a' rowspan='3'>a</td><td id='b'>b</td><td id='c'>c</td></tr>"
     "<tr><td><br></td><td><br></td></tr><tr><td id='d'>d</td><td id='e'>e</td></tr>"
     "<tr><td id='f'>f</td><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"row below a span", spans, "#a", 0, "#a", 0, "tm.insertRow(true)",
     "<table><tbody><tr><td id='a' rowspan='2'>a</td><td id='b'>b</td><td id='c'>c</td></tr>"
     "<tr><td id='d'>d</td><td id='e'>e</td></tr><tr><td><br></td><td><br></td><td><br></td></tr>"
     "<tr><td id='f'>f</td><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"row above one with a wide cell", spans, "#g", 0, "#g", 0, "tm.insertRow(false)",
     "<table><tbody><tr><td id='a' rowspan='2'>a</td><td id='b'>b</td><td id='c'>c</td></tr>"
     "<tr><td id='d'>d</td><td id='e'>e</td></tr><tr><td><br></td><td colspan='2'><br></td></tr>"
     "<tr><td id='f'>f</td><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"the first row of a span", spans, "#c", 0, "#c", 0, "tm.removeRows()",
     "<table><tbody><tr><td id='a'>a</td><td id='d'>d</td><td id='e'>e</td></tr>"
     "<tr><td id='f'>f</td><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"the last row of a span", spans, "#d", 0, "#d", 0, "tm.removeRows()",
     "<table><tbody><tr><td id='a'>a</td><td id='b'>b</td><td id='c'>c</td></tr>"
     "<tr><td id='f'>f</td><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"all rows of a span", spans, "#a", 0, "#a", 0, "tm.removeRows()",
     "<table><tbody><tr><td id='f'>f</td><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"column beside a high cell", spans, "#d", 0, "#d", 0, "tm.insertColumn(false)",
     "<table><tbody><tr><td id='a' rowspan='2'>a</td><td><br></td><td id='b'>b</td><td id='c'>c</td></tr>"
     "<tr><td><br></td><td id='d'>d</td><td id='e'>e</td></tr>"
     "<tr><td id='f'>f</td><td><br></td><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"column inside of a wide cell", spans, "#d", 0, "#d", 0, "tm.insertColumn(true)",
     "<table><tbody><tr><td id='a' rowspan='2'>a</td><td id='b'>b</td><td><br></td><td id='c'>c</td></tr>"
     "<tr><td id='d'>d</td><td><br></td><td id='e'>e</td></tr>"
     "<tr><td id='f'>f</td><td id='g' colspan='3'>g</td></tr></tbody></table>"},
    {"the column of a high cell", spans, "#f", 0, "#f", 0, "tm.removeColumns()",
     "<table><tbody><tr><td id='b'>b</td><td id='c'>c</td></tr><tr><td id='d'>d</td><td id='e'>e</td></tr>"
     "<tr><td id='g' colspan='2'>g</td></tr></tbody></table>"},
    {"a column of a wide cell", spans, "#e", 0, "#e", 0, "tm.removeColumns()",
     "<table><tbody><tr><td id='a' rowspan='2'>a</td><td id='b'>b</td></tr><tr><td id='d'>d</td></tr>"
     "<tr><td id='f'>f</td><td id='g'>g</td></tr></tbody></table>"},
    {"row in a span to the end",
     "<table><tbody><tr><td id='a' rowspan='0'>a</td><td id='b'>b</td></tr><tr><td>c</td></tr>"
     "</tbody></table>",
     "#b", 0, "#b", 0, "tm.insertRow(true)",
     "<table><tbody><tr><td id='a' rowspan='0'>a</td><td id='b'>b</td></tr><tr><td><br></td></tr><tr><td>c</td></tr>"
     "</tbody></table>"},
    {"the last row", "<table><tbody><tr><td>1</td></tr></tbody></table>", "td", 0, "td", 0, "tm.removeRows()",
     "<p><br></p>"},
    {"marks", "<p>one two</p>", "p", 4, "p", 7, "tm.enclose('it\\'s ', ' so')", "<p>one it's two so</p>"},
    {"contents", "<h1 id='a'>One</h1><h2 id='b'>Two</h2>", "h1", 0, "h1", 0, "tm.setContents(true)",
     "<div class='TOC' id='TOC'><ul><li class='tm_level_1' style='margin-left: 0em;'><a "
     "href='#a'>One</a></li>"
     "<li class='tm_level_2' style='margin-left: 1.2em;'><a href='#b'>Two</a></li></ul></div>\n"
     "<h1 id='a'>One</h1><h2 id='b'>Two</h2>"},
    {"a script that fails", "<p>one</p>", "p", 0, "p", 0, "nothing.at.all()", "<p>one</p>"},
};

QString html(const char *text)
{
    return QString::fromUtf8(text).replace(u'\'', u'"');
}

} // namespace

TEST_F(FormattedEditing, everyCommandIsOneStepThatCanBeUndone)
{
    open(QStringLiteral("<p>begin</p>"));
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        pane.showDocument({});
        open(html(row.body));
        if (HasFatalFailure()) return;
        const QString before = body();
        select(QString::fromUtf8(row.from), row.start, QString::fromUtf8(row.to), row.end);
        const QString expected = row.name == std::string_view("marks") ? QString::fromUtf8(row.after) : html(row.after);
        EXPECT_EQ(afterScript(QString::fromUtf8(row.script)), expected);
        undoAll(1);
        EXPECT_EQ(body(), before);
        undoAll(1);
        EXPECT_EQ(body(), before);
        pane.view()->redo();
        pane.view()->waitForPage();
        EXPECT_EQ(body(), expected);
    }
}

// Whatever was done, and however often it was saved meanwhile: each command is one step, and the first steps give the
// file as it was.
TEST_F(FormattedEditing, allIsUndoneToTheStart)
{
    QStringList scripts{QStringLiteral("tm.tab(false)"),
                        QStringLiteral("tm.tab(true)"),
                        QStringLiteral("tm.enclose('(', ')')"),
                        QStringLiteral("tm.setContents(true)"),
                        QStringLiteral("tm.setContents(false)"),
                        QStringLiteral("tm.replaceAll('e', 'E')"),
                        scriptOfCommand(QStringLiteral("text"), QStringLiteral("new ")),
                        scriptOfCommand(QStringLiteral("image"), QStringLiteral("TMImages/a.png")),
                        scriptOfCommand(QStringLiteral("link"), QStringLiteral("b.html")),
                        scriptOfCommand(QStringLiteral("mark"), QStringLiteral("#ffef8a")),
                        scriptOfCommand(QStringLiteral("class"), QStringLiteral("note"))};
    for (const FormattingCommand &command : formattingCommands())
        if (!QString::fromUtf8(command.script).contains(QStringLiteral("%1")))
            scripts.append(QString::fromUtf8(command.script));
    for (const char *block : {"p", "h2", "pre", "blockquote"})
        scripts.append(scriptOfCommand(QStringLiteral("paragraph"), QString::fromLatin1(block)));

    open(QStringLiteral("<h1>One</h1>\n<p>two <b>three</b></p>\n<ul><li>four<ul><li>five</li></ul></li></ul>\n"
                        "<table><tbody><tr><td>six</td><td rowspan=\"2\">seven</td></tr><tr><td>eight</td></tr>"
                        "</tbody></table>\n<p>nine</p>"));
    const QByteArray source = read(QStringLiteral("/Note.html"));
    const QString before = body();
    QRandomGenerator random(5);
    int steps = 0;
    for (int i = 0; i < 200; ++i) {
        script(QStringLiteral("{ const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);"
                              "const texts = []; while (walker.nextNode()) texts.push(walker.currentNode);"
                              "const at = n => texts[n % texts.length]; if (texts.length) "
                              "getSelection().setBaseAndExtent(at(%1), %3 % (at(%1).length + 1), at(%2), %3 % "
                              "(at(%2).length + 1)); }")
                   .arg(random.bounded(1000))
                   .arg(random.bounded(1000))
                   .arg(random.bounded(5)));
        const QString now = body();
        const QString command = scripts[random.bounded(int(scripts.size()))];
        const QString then = afterScript(command);
        if (then == now) continue;
        ++steps;
        undoAll(1);
        ASSERT_EQ(body(), now) << command.toStdString();
        pane.view()->redo();
        pane.view()->waitForPage();
        ASSERT_EQ(body(), then) << command.toStdString();
        if (i % 40 == 0) pane.saveTyping();
    }
    pane.saveTyping();
    const QByteArray saved = read(QStringLiteral("/Note.html"));
    const QString last = body();
    EXPECT_GT(steps, 100);
    ASSERT_NE(saved, source);
    undoAll(steps);
    EXPECT_EQ(body(), before);
    pane.saveTyping();
    EXPECT_EQ(read(QStringLiteral("/Note.html")).toStdString(), source.toStdString());
    for (int i = 0; i < steps; ++i) pane.view()->redo();
    pane.view()->waitForPage();
    EXPECT_EQ(body(), last);
    pane.saveTyping();
    EXPECT_EQ(read(QStringLiteral("/Note.html")), saved);
}

TEST_F(FormattedEditing, marksLeaveTheSelectionOnItsText)
{
    open(QStringLiteral("<p>one two</p>"));
    select(QStringLiteral("p"), 4, QStringLiteral("p"), 7);
    afterScript(scriptForMarks(QStringLiteral("("), QStringLiteral(")")));
    EXPECT_EQ(pane.view()->selectedText(), QStringLiteral("two"));
    select(QStringLiteral("p"), 0, QStringLiteral("p"), 0);
    afterScript(scriptForMarks(QStringLiteral("«"), QStringLiteral("»")));
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("it's")));
    EXPECT_EQ(body(), QStringLiteral("<p>«it's»one (two)</p>"));
}

// What is typed next goes where the caret was.
TEST_F(FormattedEditing, theCaretStaysWhenBlocksChange)
{
    const struct
    {
        const char *body, *script, *after;
    } rows[] = {
        {"<p>one</p><p id='z'>two</p>", "tm.toggleList()", "<p>one</p><ul><li>twX|o</li></ul>"},
        {"<p>one</p><p id='z'>two</p><table><tbody><tr><td>a</td></tr></tbody></table>", "tm.toggleList()",
         "<p>one</p><ul><li>twX|o</li></ul><table><tbody><tr><td>a</td></tr></tbody></table>"},
        {"<p id='z'>two</p>", "tm.setList(true)", "<ol><li>twX|o</li></ol>"},
        {"<p id='z'>two</p>", "tm.toggleBoxes()",
         "<ul><li class=\"tm_checkbox\"><input type=\"checkbox\">twX|o</li></ul>"},
        {"<ul><li id='z'>two</li></ul>", "tm.setList(false)", "<p>twX|o</p>"},
        {"<ul><li>one</li><li id='z'>two</li></ul>", "tm.indent(false)",
         "<ul><li>one<ul><li>twX|o</li></ul></li></ul>"},
        {"<p id='z'>two</p>", "tm.setBlock('h2') || document.execCommand('formatblock', false, 'h2')",
         "<h2>twX|o</h2>"},
    };
    for (const auto &row : rows) {
        ASSERT_TRUE(pane.closeDocument());
        open(QString::fromUtf8(row.body));
        select(QStringLiteral("#z"), 2, QStringLiteral("#z"), 2);
        afterScript(QString::fromUtf8(row.script));
        const QString typed = afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("X|")));
        EXPECT_EQ(QString(typed).remove(QStringLiteral(" id=\"z\"")), QString::fromUtf8(row.after)) << row.script;
    }
}

TEST_F(FormattedEditing, theBarShowsWhatIsSelected)
{
    open(QStringLiteral("<p>one <code>x</code></p><p id=\"z\">two <b>three</b></p>"));
    FormattingState state;
    QObject listener;
    QObject::connect(pane.view(), &TMLTWebView::stateChanged, &listener,
                     [&](const FormattingState &now) { state = now; });
    select(QStringLiteral("p"), 0, QStringLiteral("#z"), 3);
    afterScript(scriptOfCommand(QStringLiteral("mark"), QStringLiteral("#ffef8a")));
    EXPECT_TRUE(state.isMarked);
    EXPECT_FALSE(state.active.value(QStringLiteral("bold")).toBool());
    select(QStringLiteral("b"), 1, QStringLiteral("b"), 1);
    pane.view()->waitForPage();
    EXPECT_FALSE(state.isMarked);
    EXPECT_TRUE(state.active.value(QStringLiteral("bold")).toBool());
    script(QStringLiteral("getSelection().selectAllChildren(document.body)"));
    pane.view()->waitForPage();
    EXPECT_FALSE(state.isMarked); // not all of it
    afterScript(scriptOfCommand(QStringLiteral("unmark")));
    EXPECT_EQ(body(), QStringLiteral("<p>one <code>x</code></p><p id=\"z\">two <b>three</b></p>"));
}

TEST_F(FormattedEditing, thePropertyOfTheContentsTableFollowsUndo)
{
    const auto property = [this] { return tm_propertyForKey(path, QStringLiteral("TOC")).toString(); };
    open(QStringLiteral("<h1>One</h1><p>two</p>"));
    Q_EMIT pane.findChild<FormattingBar *>()->contentsWanted();
    pane.view()->waitForPage();
    EXPECT_EQ(property(), QStringLiteral("1"));
    undoAll(1);
    EXPECT_EQ(property(), QString());
    select(QStringLiteral("p"), 0, QStringLiteral("p"), 0);
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("x")));
    EXPECT_FALSE(body().contains(QStringLiteral("TOC")));
    undoAll(1);
    Q_EMIT pane.findChild<FormattingBar *>()->contentsWanted();
    pane.view()->waitForPage();
    EXPECT_TRUE(body().contains(QStringLiteral("id=\"TOC\"")));
    EXPECT_EQ(property(), QStringLiteral("1"));
}

TEST_F(FormattedEditing, aDocumentThatIsOnlyLookedAtStaysAsItIs)
{
    open(QStringLiteral("<p>A &amp; b</p>\n<pre>\n\n  code</pre><ul class=x><li>open"));
    const QByteArray bytes = read(QStringLiteral("/Note.html"));
    const QDateTime date = QFileInfo(path).lastModified();
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("x")));
    undoAll(3);
    pane.showDocument({});
    EXPECT_EQ(read(QStringLiteral("/Note.html")), bytes);
    EXPECT_EQ(QFileInfo(path).lastModified(), date);
}

TEST_F(FormattedEditing, closingSavesTheLastInput)
{
    open(QStringLiteral("<p>Text</p>"));
    const QByteArray before = read(QStringLiteral("/Note.html"));
    pane.view()->run(scriptOfCommand(QStringLiteral("text"), QStringLiteral("Last ")));
    pane.showDocument({});
    EXPECT_EQ(read(QStringLiteral("/Note.html")).toStdString(),
              QByteArray(before).replace("<p>Text</p>", "<p>Last Text</p>").toStdString());
}

TEST_F(FormattedEditing, foreignPagesKeepAllThatIsNotTheirBody)
{
    path = write(QStringLiteral("/Foreign.html"),
                 "<!DOCTYPE html>\n<HTML><head><script>if (a<b) w('<body>')</script>\n"
                 "<style>@media (prefers-color-scheme: dark) { p { color: red } }</style></head>\n"
                 "<body onload=\"x()\" class='a'><p>Text</p></body></HTML>");
    show();
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("New ")));
    pane.showDocument({});
    EXPECT_EQ(read(QStringLiteral("/Foreign.html")),
              "<!DOCTYPE html>\n<HTML><head><script>if (a<b) w('<body>')</script>\n"
              "<style>@media (prefers-color-scheme: dark) { p { color: red } }</style></head>\n"
              "<body onload=\"x()\" class='a'><p>New Text</p></body>\n</html>\n");
}

TEST_F(FormattedEditing, whatIsSavedReadsAsTheSamePage)
{
    const QByteArray source = "<p>a</p><pre>\n\n  code</pre><p>x&#13;y &lt;b&gt; \xc2\xa0</p><textarea>\n\nt</textarea>"
                              "<!-- c --><svg viewBox=\"0 0 1 1\"><path d=\"M0 0\"></path></svg><details "
                              "open=\"\"><summary>s</summary></details>";
    path =
        write(QStringLiteral("/Foreign.html"), "<html><head><title>t</title></head><body>" + source + "</body></html>");
    QByteArray before;
    for (const char *letter : {"Q", "W", "Z"}) {
        show();
        select(QStringLiteral("p"), 0, QStringLiteral("p"), 0);
        afterScript(scriptOfCommand(QStringLiteral("text"), QString::fromLatin1(letter)));
        pane.showDocument({});
        const QByteArray after = read(QStringLiteral("/Foreign.html"));
        EXPECT_EQ(before.isEmpty() ? QByteArray() : QByteArray(after).replace(letter, ""), before);
        before = after;
    }
    EXPECT_EQ(before, "<html><head><title>t</title></head><body>" +
                          QByteArray(source).replace("<p>a", "<p>ZWQa").replace("\xc2\xa0", "&nbsp;") +
                          "</body>\n</html>\n");
}

TEST_F(FormattedEditing, styleChangesLeaveCaretAndHistoryAlone)
{
    open(QStringLiteral("<p>one</p>"));
    select(QStringLiteral("p"), 2, QStringLiteral("p"), 2);
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("x")));
    tm_setProperty(path, QStringLiteral("31"), QStringLiteral("noteFontSize"));
    notifications().post(QStringLiteral("TMLTReloadCurrentDocument"));
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("y")));
    EXPECT_EQ(body(), QStringLiteral("<p>onxye</p>"));
    EXPECT_EQ(script(QStringLiteral("getComputedStyle(document.body).fontSize")).toString(), QStringLiteral("31px"));
    undoAll(2);
    EXPECT_EQ(body(), QStringLiteral("<p>one</p>"));
}

TEST_F(FormattedEditing, whatAnotherViewSavedComesInUnderTheCaret)
{
    const QString first = QStringLiteral("<h1>Title</h1><p>one</p><p id=\"z\">two</p>");
    open(first);
    QSignalSpy loaded(pane.view()->page(), &QWebEnginePage::loadFinished);
    select(QStringLiteral("#z"), 2, QStringLiteral("#z"), 2);
    QSignalSpy ready(pane.view(), &TMLTWebView::ready);
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("Y")));
    const QString typed = body();
    pane.saveTyping();
    QTest::qWait(20);
    const QString other = QStringLiteral("<h1>New</h1><p>one and more</p><p>and</p><p id=\"z\">twYo</p>");
    ASSERT_TRUE(writeFile(path, tm_createFormattedDocWithBody(path, other).toUtf8()));
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
    ASSERT_TRUE(ready.wait(20000));
    EXPECT_FALSE(pane.view()->isEditing());
    EXPECT_EQ(body(), other);
    Q_EMIT pane.view()->editingWanted(false);
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("X")));
    EXPECT_EQ(body(), QString(other).replace(QStringLiteral("twY"), QStringLiteral("twYX")));
    for (const QString &state : {other, typed, first, first}) {
        undoAll(1);
        EXPECT_EQ(body(), state);
    }
    for (int i = 0; i < 2; ++i) pane.view()->redo();
    pane.saveTyping();
    EXPECT_TRUE(read(QStringLiteral("/Note.html")).contains(other.toUtf8()));

    // Undo begins editing where the page took in another's text, also when that came with another look.
    ready.clear();
    QTest::qWait(20);
    tm_setProperty(path, QStringLiteral("31"), QStringLiteral("noteFontSize"));
    ASSERT_TRUE(writeFile(path, tm_createFormattedDocWithBody(path, first).toUtf8()));
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
    ASSERT_TRUE(ready.wait(20000));
    EXPECT_EQ(body(), first);
    EXPECT_EQ(script(QStringLiteral("getComputedStyle(document.body).fontSize")).toString(), QStringLiteral("31px"));
    QTest::keyClick(pane.view()->focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(pane.view()->isEditing());
    EXPECT_TRUE(comes([&] { return body() == other; })) << body().toStdString();
    EXPECT_EQ(loaded.count(), 0);
}

TEST_F(FormattedEditing, picturesGoBesideTheDocument)
{
    open(QStringLiteral("<p>one</p>"));
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    for (int i = 0; i < 2; ++i) Q_EMIT pane.view()->imagePasted(picture);
    pane.view()->waitForPage();
    const QStringList stored = names(QStringLiteral("/TMImages"));
    ASSERT_FALSE(stored.isEmpty());
    EXPECT_TRUE(body().contains(QStringLiteral("<img src=\"TMImages/") +
                                QString(stored.first()).replace(u' ', QStringLiteral("%20"))));
    const QString outside = world.filePath(QStringLiteral("a &copy b.txt"));
    ASSERT_TRUE(writeFile(outside, "text"));
    Q_EMIT pane.view()->filesDropped({outside});
    pane.view()->waitForPage();
    EXPECT_TRUE(body().contains(QStringLiteral(">a &amp;copy b</a>"))) << body().toStdString();
    EXPECT_EQ(script(QStringLiteral("decodeURIComponent(document.querySelector('a').href)")).toString(),
              QString(QStringLiteral("file://") + outside));
    EXPECT_EQ(names(QStringLiteral("/TMImages")), stored);
}

TEST_F(FormattedEditing, keysAndTheMouseWorkOnThePage)
{
    open(QStringLiteral("<p>one</p><ul><li class=\"tm_checkbox\">box</li></ul>"));
    const QString before = body();
    QWidget *keys = keyTaker();
    select(QStringLiteral("p"), 3, QStringLiteral("p"), 3);
    QTest::keyClicks(keys, QStringLiteral(" two"));
    EXPECT_TRUE(comes([&] { return body().startsWith(QStringLiteral("<p>one two</p>")); }));
    QTest::keyClick(keys, Qt::Key_A, Qt::ControlModifier);
    // The page takes keys in its own time, and commands come another way.
    EXPECT_TRUE(
        comes([&] { return script(QStringLiteral("getSelection().toString()")).toString().contains(u"one two"); }));
    QTest::keyClick(keys, Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(comes([&] { return body().startsWith(QStringLiteral("<p><b>one two</b></p>")); }));
    const QVariantMap place = script(QStringLiteral("{ const r = document.querySelector('li').getBoundingClientRect();"
                                                    "({x: r.left - 8, y: r.top + 8}) }"))
                                  .toMap();
    const QPoint box(place[QStringLiteral("x")].toInt(), place[QStringLiteral("y")].toInt());
    QTest::mouseClick(keys, Qt::LeftButton, {}, box);
    EXPECT_TRUE(comes([&] { return body().contains(QStringLiteral("tm_checkbox_done")); }));
    for (int i = 0; i < 4; ++i) // the box, the mark, a word, a blank
        QTest::keyClick(keys, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(comes([&] { return body() == before; })) << body().toStdString();
}

TEST_F(FormattedEditing, newItemsAreOpen)
{
    open(QStringLiteral("<ul><li class=\"tm_checkbox_done\"><input type=\"checkbox\" checked=\"\">one</li></ul>"));
    const QString before = body();
    QWidget *keys = keyTaker();
    script(QStringLiteral("getSelection().setPosition(document.querySelector('li').lastChild, 3)"));
    QTest::keyClick(keys, Qt::Key_Return);
    QTest::keyClicks(keys, QStringLiteral("two")); // at once
    EXPECT_TRUE(comes([&] {
        return body() == QString(before).replace(
                             QStringLiteral("</ul>"),
                             QStringLiteral("<li class=\"tm_checkbox\"><input type=\"checkbox\">two</li></ul>"));
    })) << body().toStdString();
    for (int i = 0; i < 2; ++i) QTest::keyClick(keys, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(comes([&] { return body() == before; })) << body().toStdString();
}

TEST_F(FormattedEditing, typingIsUndoneByWords)
{
    open(QStringLiteral("<p>a</p><p>z</p>"));
    QWidget *keys = keyTaker();
    select(QStringLiteral("p"), 1, QStringLiteral("p"), 1);
    const auto shows = [this](const char *text) {
        return comes([&] { return body() == QString::fromUtf8(text).replace(u'_', QStringLiteral("&nbsp;")); });
    };
    QTest::keyClicks(keys, QStringLiteral("b one two"));
    QTest::keyClick(keys, Qt::Key_Backspace);
    QTest::keyClick(keys, Qt::Key_Backspace);
    QTest::keyClick(keys, Qt::Key_Return);
    QTest::keyClicks(keys, QStringLiteral("x"));
    ASSERT_TRUE(shows("<p>ab one t</p><p>x</p><p>z</p>")) << body().toStdString();
    const char *back[] = {"<p>ab one t</p><p><br></p><p>z</p>",
                          "<p>ab one t</p><p>z</p>",
                          "<p>ab one two</p><p>z</p>",
                          "<p>ab one_</p><p>z</p>",
                          "<p>ab_</p><p>z</p>",
                          "<p>a</p><p>z</p>"};
    for (const char *state : back) {
        QTest::keyClick(keys, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_TRUE(shows(state)) << state << "\n" << body().toStdString();
    }
    for (int i = 0; i < 6; ++i) QTest::keyClick(keys, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(shows("<p>ab one t</p><p>x</p><p>z</p>")) << body().toStdString();
}

TEST_F(FormattedEditing, dropsComeInWhereTheyAreLetGo)
{
    open(QStringLiteral("<p>one</p><p id=\"z\">two</p>"));
    const QString before = body();
    const QVariantMap place = script(QStringLiteral("{ const r = document.getElementById('z').getBoundingClientRect();"
                                                    "({x: r.left + 1, y: r.top + r.height / 2}) }"))
                                  .toMap();
    const auto drop = [this, &place](QMimeData &data) {
        const QPointF at(place[QStringLiteral("x")].toDouble(), place[QStringLiteral("y")].toDouble());
        QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(pane.view(), &enter);
        QDropEvent event(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(pane.view(), &event);
        pane.view()->waitForPage();
    };
    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(write(QStringLiteral("/Other.md")))});
    drop(file);
    EXPECT_EQ(body(),
              QStringLiteral("<p>one</p><p id=\"z\"><a href=\"file://%1/Other.md\">Other</a>two</p>").arg(root));
    undoAll(1);
    EXPECT_EQ(body(), before);

    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::green);
    QMimeData ofBrowser;
    ofBrowser.setImageData(picture);
    ofBrowser.setHtml(QStringLiteral("<meta charset=\"utf-8\"><img src=\"http://example.org/a.png\" alt=\"x\">"));
    drop(ofBrowser);
    EXPECT_TRUE(body().contains(QStringLiteral("<p id=\"z\"><img src=\"TMImages/"))) << body().toStdString();
    ASSERT_EQ(names(QStringLiteral("/TMImages")).size(), 1);

    pane.showDocument({});
    tm_setProperty(path, QStringLiteral("1"), QStringLiteral("R/O"));
    QSignalSpy ready(pane.view(), &TMLTWebView::ready);
    pane.showDocument(path);
    ASSERT_TRUE(ready.wait(20000));
    drop(ofBrowser);
    EXPECT_EQ(names(QStringLiteral("/TMImages")).size(), 1);
}

TEST_F(FormattedEditing, pictureOfTheClipboardIsPasted)
{
    open(QStringLiteral("<p>one</p>"));
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    QApplication::clipboard()->setImage(picture);
    QTest::keyClick(pane.view()->focusProxy(), Qt::Key_V, Qt::ControlModifier);
    pane.view()->waitForPage();
    EXPECT_EQ(names(QStringLiteral("/TMImages")).size(), 1);
    EXPECT_TRUE(body().contains(QStringLiteral("<img src=\"TMImages/")));
    pane.showDocument({});
    EXPECT_TRUE(read(QStringLiteral("/Note.html")).contains("<img src=\"TMImages/"));
}

TEST_F(FormattedEditing, replacingStaysOutsideOfTags)
{
    open(QStringLiteral("<p class=\"note\">Note a note.</p><p>no<b>te</b> NOTE (x)</p>"));
    select(QStringLiteral("p"), 5, QStringLiteral("p"), 5);
    EXPECT_EQ(afterScript(QStringLiteral("tm.replaceNext('note', 'text')")),
              QStringLiteral("<p class=\"note\">Note a text.</p><p>no<b>te</b> NOTE (x)</p>"));
    EXPECT_EQ(afterScript(QStringLiteral("tm.replaceAll('note', '$&<')")),
              QStringLiteral("<p class=\"note\">$&amp;&lt; a text.</p><p>$&amp;&lt; $&amp;&lt; (x)</p>"));
    EXPECT_EQ(afterScript(QStringLiteral("tm.replaceAll('(x)', '')")),
              QStringLiteral("<p class=\"note\">$&amp;&lt; a text.</p><p>$&amp;&lt; $&amp;&lt; </p>"));
    undoAll(3);
    EXPECT_EQ(body(), QStringLiteral("<p class=\"note\">Note a note.</p><p>no<b>te</b> NOTE (x)</p>"));
}

TEST_F(FormattedEditing, wordsAreReplacedAcrossTags)
{
    const QString before =
        QStringLiteral("<p>no<b>te</b>, <i>a</i> no<b>t<i>e</i>s</b></p><ul><li>no<ul><li>te</li></ul>te no<br>te"
                       "</li></ul><p>two\n words, two&nbsp;words</p>");
    open(before);
    EXPECT_EQ(afterScript(QStringLiteral("tm.replaceAll('note', 'word')")),
              QStringLiteral("<p>word, <i>a</i> word<b>s</b></p><ul><li>no<ul><li>te</li></ul>te no<br>te</li></ul>"
                             "<p>two\n words, two&nbsp;words</p>"));
    EXPECT_TRUE(afterScript(QStringLiteral("tm.replaceAll('two words', 'Three')"))
                    .endsWith(QStringLiteral("<p>Three, Three</p>")));
    undoAll(2);
    EXPECT_EQ(body(), before);
    select(QStringLiteral("p > b"), 1, QStringLiteral("p > b"), 1);
    EXPECT_TRUE(afterScript(QStringLiteral("tm.replaceNext('note', '')"))
                    .startsWith(QStringLiteral("<p>no<b>te</b>, <i>a</i> <b>s</b></p>")));
    EXPECT_TRUE(afterScript(QStringLiteral("tm.replaceNext('note', 'x')"))
                    .startsWith(QStringLiteral("<p>x, <i>a</i> <b>s</b></p>")));
    undoAll(1);
    EXPECT_TRUE(body().startsWith(QStringLiteral("<p>no<b>te</b>, <i>a</i> <b>s</b></p>")));
}

TEST_F(FormattedEditing, newDocumentsAreNamedAfterTheirFirstLine)
{
    pane.show();
    pane.createDocument(QStringLiteral("html"), root);
    ASSERT_TRUE(comes([&] { return pane.view()->isEditing(); }));
    pane.view()->waitForPage();
    afterScript(scriptOfCommand(QStringLiteral("text"), QStringLiteral("Fresh")));
    pane.showDocument({});
    EXPECT_TRUE(read(QStringLiteral("/Fresh.html")).contains("<body>\n<p>Fresh</p>\n</body>"));
}

TEST_F(FormattedEditing, readOnlyDocumentsStayClosed)
{
    path = write(QStringLiteral("/Note.html"), "<p>Text</p>");
    tm_setProperty(path, QStringLiteral("1"), QStringLiteral("R/O"));
    QSignalSpy ready(pane.view(), &TMLTWebView::ready);
    pane.showDocument(path);
    ASSERT_TRUE(ready.wait(20000));
    Q_EMIT pane.view()->editingWanted(false);
    EXPECT_FALSE(pane.view()->isEditing());
}

TEST_F(FormattedEditing, boxesOfMarkdownPagesToggleTheirLines)
{
    const QByteArray source = "Tasks\n\n- [ ] one\n- [x] two\n" + QByteArray("\nline\n").repeated(200);
    path = write(QStringLiteral("/Tasks.md"), source);
    settings().setObject(QStringLiteral("showMarkdownAsPlainText"), false);
    pane.resize(800, 300);
    pane.show();
    QSignalSpy loaded(pane.view()->page(), &QWebEnginePage::loadFinished);
    pane.showDocument(path);
    ASSERT_TRUE(loaded.wait(20000));
    const auto boxAt = [this](int number) {
        return script(QStringLiteral("{ window.scrollTo(0, 20); const r = "
                                     "document.querySelectorAll('li')[%1].getBoundingClientRect();"
                                     "({x: r.left - 8, y: r.top + 8}) }")
                          .arg(number))
            .toMap();
    };
    const auto click = [this, &boxAt](int number) {
        const QVariantMap place = boxAt(number);
        QTest::mouseClick(pane.view()->focusProxy(), Qt::LeftButton, {},
                          QPoint(place[QStringLiteral("x")].toInt(), place[QStringLiteral("y")].toInt()));
    };
    const auto shown = [this] {
        return script(QStringLiteral("[...document.querySelectorAll('li')].map(e => e.className).join()")).toString();
    };
    click(0);
    EXPECT_TRUE(
        comes([&] { return read(QStringLiteral("/Tasks.md")) == QByteArray(source).replace("[ ] one", "[x] one"); }));
    EXPECT_TRUE(comes([&] { return shown() == QStringLiteral("tm_checkbox_done,tm_checkbox_done"); }));
    click(1);
    EXPECT_TRUE(comes([&] { return shown() == QStringLiteral("tm_checkbox_done,tm_checkbox"); }));
    EXPECT_EQ(script(QStringLiteral("window.scrollY")).toInt(), 20);
    EXPECT_EQ(loaded.count(), 1);
    actions.undoStack().undo();
    actions.undoStack().undo();
    EXPECT_EQ(read(QStringLiteral("/Tasks.md")), source);
    EXPECT_TRUE(comes([&] { return shown() == QStringLiteral("tm_checkbox,tm_checkbox_done"); }));
}

TEST_F(FormattedEditing, longPagesAreLaidOutBitByBitAndScrollToTheirPlace)
{
    QByteArray source = "Long\n";
    for (int i = 0; i < 3000; ++i)
        source +=
            "\nParagraph " + QByteArray::number(i) + QByteArray(" and some words of it").repeated(5 + i % 7) + "\n";
    settings().setObject(QStringLiteral("showMarkdownAsPlainText"), false);
    path = write(QStringLiteral("/Long.md"), source);
    tm_setProperty(path, QStringLiteral("60000"), QStringLiteral("Offset"));
    pane.resize(800, 300);
    pane.show();
    pane.showDocument(path);
    const auto rule = [this] {
        return script(QStringLiteral("document.getElementById('tm_long_page')?.textContent ?? 'none'")).toString();
    };
    const QString onTop = QStringLiteral("document.elementFromPoint(400, 100)?.textContent.slice(0, 15)");
    EXPECT_TRUE(comes([&] { return script(QStringLiteral("window.scrollY")).toInt() == 60000; }));
    const QString early = script(onTop).toString();
    EXPECT_TRUE(early.startsWith(QStringLiteral("Paragraph"))) << early.toStdString();
    EXPECT_TRUE(comes([&] { return rule().isEmpty(); })) << rule().toStdString();
    EXPECT_EQ(script(onTop).toString(), early);
    EXPECT_EQ(script(QStringLiteral("window.scrollY")).toInt(), 60000);
    EXPECT_EQ(read(QStringLiteral("/Long.md")), source);
}

TEST(PageBody, findsItsBody)
{
    EXPECT_EQ(pageWithBody(QStringLiteral("<p>a"), QStringLiteral("b")), QStringLiteral("b"));
    EXPECT_EQ(pageWithBody(QStringLiteral("<head><!-- <body> --></head>a"), QStringLiteral("b")),
              QStringLiteral("<head><!-- <body> --></head>b"));
    EXPECT_EQ(pageWithBody(QStringLiteral("<body title='a>b'>c</body>d"), QStringLiteral("e")),
              QStringLiteral("<body title='a>b'>e</body>"));
    EXPECT_EQ(pageWithBody(
                  QStringLiteral(
                      "<!DOCTYPE html><html>\n<head><style>p</style>stray <b>text</b></head>\n<body class=x>c</body>"),
                  QStringLiteral("e")),
              QStringLiteral("<!DOCTYPE html><html>\n<head><style>p</style><body class=x>e</body>"));
    EXPECT_EQ(headOfPage(QStringLiteral("<html><head x><title></head></title></head>")),
              QStringLiteral("<title></head></title>"));
}
