// SPDX-License-Identifier: GPL-3.0-or-later
// URLs of the program's own scheme: what they ask for, and what is done about it; the services for other programs.
#include "library/urls/UrlActions.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/Properties.h"
#include "library/urls/FromOutside.h"
#include "library/urls/ServiceProvider.h"
#include "library/urls/UrlAction.h"
#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

#include <QDir>
#include <QFile>

namespace tomelet {

using namespace Qt::StringLiterals;

namespace {

// One line that tells all there is in an action.
QString told(const QString &url)
{
    const auto action = parseUrlAction(url);
    if (!action) return u"none"_s;
    switch (action->kind) {
    case UrlAction::Show: return u"show "_s + action->item;
    case UrlAction::Grab: return QString(u"grab %1 [%2] in [%3]"_s).arg(action->address, action->title, action->parent);
    case UrlAction::AddNote: return QString(u"note %1 [%2] in [%3]"_s).arg(action->text, action->title, action->parent);
    case UrlAction::Search: return QString(u"search %1 in [%2]"_s).arg(action->term, action->scope);
    case UrlAction::Unsupported: return u"unsupported "_s + action->host;
    case UrlAction::LogOnly: return u"log "_s + action->host;
    }
    return {};
}

} // namespace

TEST(UrlAction, items)
{
    test::check(told, {
                          {"with show", u"tomelet://show/Book/Doc.md#Intro"_s, u"show /Book/Doc.md#Intro"_s},
                          {"without", u"tomelet://Book/Doc.md#Intro"_s, u"show /Book/Doc.md#Intro"_s},
                          {"one component", u"tomelet://Doc.md"_s, u"show /Doc.md"_s},
                          {"host behind a slash", u"tomelet:///Book/Doc.md"_s, u"show /Book/Doc.md"_s},
                          {"case and escapes stay", u"TomeLet://My%20Book/Ä b.md"_s, u"show /My%20Book/Ä b.md"_s},
                          {"the root", u"tomelet://show"_s, u"show /"_s},
                          {"ampersands are names", u"tomelet://show/A&title=B.md"_s, u"show /A&title=B.md"_s},
                          {"begins like an action", u"tomelet://Searches/a.md"_s, u"show /Searches/a.md"_s},
                          {"a book of that name", u"tomelet://Search/a.md"_s, u"show /Search/a.md"_s},
                          {"another scheme", u"http://show/a.md"_s, u"none"_s},
                          {"no scheme", u"Book/Doc.md"_s, u"none"_s},
                          {"nothing", u""_s, u"none"_s},
                      });
}

TEST(UrlAction, grab)
{
    test::check(
        told,
        {
            {"plain", u"tomelet://grab/http://a.de/b?c=d#e"_s, u"grab http://a.de/b?c=d#e [] in []"_s},
            {"escaped", u"tomelet://grab/https%3A%2F%2Fa.de%2Fb%3Fc%3Dd"_s, u"grab https://a.de/b?c=d [] in []"_s},
            {"ampersands of its own", u"tomelet://grab/http://a.de/?b=1&title=T%26U&c=2&parent=%2FB"_s,
             u"grab http://a.de/?b=1&c=2 [T&U] in [/B]"_s},
            {"book first", u"tomelet://grab/a.de&Parent=B+C&TITLE=T"_s, u"grab http://a.de [T] in [B+C]"_s},
            {"title in front", u"tomelet://grab/title=T&a.de"_s, u"grab http://a.de [T] in []"_s},
            {"bookmarklet", u"tomelet://grab/http%253A//a.de/b%253Fc%253Dd%2523e"_s,
             u"grab http://a.de/b?c=d#e [] in []"_s},
            {"no scheme", u"tomelet://grab/a.de/b"_s, u"grab http://a.de/b [] in []"_s},
            {"a port is no scheme", u"tomelet://grab/localhost:8080/b"_s, u"grab http://localhost:8080/b [] in []"_s},
            {"another scheme", u"tomelet://grab/file:///etc/passwd"_s, u"grab file:///etc/passwd [] in []"_s},
            {"no address", u"tomelet://grab/"_s, u"grab  [] in []"_s},
            {"a broken escape stays", u"tomelet://grab/http://a.de/100%"_s, u"grab http://a.de/100% [] in []"_s},
        });
}

TEST(UrlAction, notesAndSearches)
{
    test::check(told, {
                          {"text", u"tomelet://addnote/Hello%20World%0ASecond+line"_s,
                           u"note Hello World\nSecond+line [] in []"_s},
                          {"slashes go", u"tomelet://addnote//a/b/"_s, u"note a/b [] in []"_s},
                          {"title and book", u"tomelet://addnote/x&parent=B&title=T.md"_s, u"note x [T.md] in [B]"_s},
                          {"the other way round", u"tomelet://addnote/title=T&parent=B&x"_s, u"note x [T] in [B]"_s},
                          {"one part has no title", u"tomelet://addnote/title=T"_s, u"note title=T [] in []"_s},
                          {"escaped ampersand", u"tomelet://addnote/a%26title=b"_s, u"note a&title=b [] in []"_s},
                          {"the last text holds", u"tomelet://addnote/a&b&"_s, u"note b [] in []"_s},
                          {"a title that goes on", u"tomelet://addnote/x&title=a=b"_s, u"note x [a=b] in []"_s},
                          {"no text", u"tomelet://addnote"_s, u"note  [] in []"_s},
                          {"term", u"tomelet://search/%22two%20words%22"_s, u"search \"two words\" in []"_s},
                          {"scope", u"tomelet://search/word&scope=%2FMy%20Book"_s, u"search word in [/My Book]"_s},
                          {"scope first", u"tomelet://search/scope=B&word"_s, u"search word in [B]"_s},
                          {"unsupported", u"tomelet://wifi_sharing/x"_s, u"unsupported wifi_sharing"_s},
                          {"of no effect", u"tomelet://addnewtask/x&title=y"_s, u"log addnewtask"_s},
                      });
}

// -- what is done -----------------------------------------------------------------------------------------------------

namespace {

class Urls : public test::Notebook, public UrlActionShell
{
public:
    void fetch(const QUrl &address, Fetched done) override
    {
        fetched = address.toString();
        done(page);
    }
    bool bringToFront(const QString &path) override
    {
        const bool isOpen = open == path;
        if (isOpen) happened += u"front "_s + path.mid(root.size());
        return isOpen;
    }
    void showAlert(const QString &title, const QString &text) override { happened += title + u'|' + text; }
    void noteAdded(const QString &path) override { happened += u"added "_s + path.mid(root.size()); }
    void pageImported(const QString &path) override { happened += u"imported "_s + path.mid(root.size()); }
    void actionFailed(const QString &why) override { happened += u"failed "_s + why; }

protected:
    Urls()
    {
        write(u"/My Book/Doc.md"_s);
        write(u"/My Book/C#.md"_s);
        for (const char *name : {"TMLTShowItemAtPathNotification", "TMLTNewBookSelectedNotification"})
            observers.push_back(notifications().observe(QString::fromLatin1(name), [this](const QVariantMap &payload) {
                happened += u"show "_s + payload.value(u"path"_s).toString().mid(root.size());
            }));
        observers.push_back(
            notifications().observe(u"TMStartSpotlightSearchNotification"_s, [this](const QVariantMap &payload) {
                happened += u"search "_s + payload.value(u"term"_s).toString();
            }));
    }
    /// Everything that the URL leads to.
    QString run(const QString &url)
    {
        happened.clear();
        handleTomeletURL(url, *this);
        drainPendingWork();
        return happened.join(u", "_s);
    }

    FetchedPage page;
    QString fetched, open;
    QStringList happened;
    std::vector<NotificationCenter::Subscription> observers;
};

} // namespace

TEST_F(Urls, showItems)
{
    const auto run = [this](const QString &url) { return this->run(url); };
    write(u"/100%25.md"_s);
    test::check(run,
                {
                    {"encoded", u"tomelet://show/My%20Book/Doc.md#In%20tro"_s, u"show /My Book/Doc.md#In%20tro"_s},
                    {"as it is", u"tomelet://My Book/Doc.md"_s, u"show /My Book/Doc.md"_s},
                    {"a book", u"tomelet://show/My%20Book"_s, u"show /My Book"_s},
                    {"the root", u"tomelet://show/"_s, u"show "_s},
                    {"no anchor", u"tomelet://show/My%20Book/C#.md"_s, u"show /My Book/C#.md"_s},
                    {"an escaped sign", u"tomelet://My%20Book/C%23.md#Part"_s, u"show /My Book/C#.md#Part"_s},
                    {"a name with an escape", u"tomelet://100%25.md"_s, u"show /100%25.md"_s},
                    {"a query", u"tomelet://My%20Book/Doc.md?x=1#P"_s, u"show /My Book/Doc.md#P"_s},
                    {"without extension", u"tomelet://My%20Book/Doc"_s, u"show /My Book/Doc.md"_s},
                    {"missing", u"tomelet://My%20Book/No.xyz"_s, u"failed /My Book/No.xyz does not exist"_s},
                    {"outside", u"tomelet://show/../root-of-all"_s, u"failed /../root-of-all does not exist"_s},
                    {"outside, escaped", u"tomelet://show/%2E%2E/%2e%2e/etc"_s, u"failed /../../etc does not exist"_s},
                });
    open = at(u"/My Book/Doc.md#P"_s);
    EXPECT_EQ(run(u"tomelet://My%20Book/Doc.md#P"_s), u"front /My Book/Doc.md#P"_s);
}

TEST_F(Urls, makeAMissingDocumentOnRequest)
{
    platform().ask = [](const Question &) { return 0; };
    EXPECT_EQ(run(u"tomelet://My%20Book/New.md"_s), u"show /My Book/New.md"_s);
    EXPECT_EQ(read(u"/My Book/New.md"_s), "New");
    EXPECT_EQ(run(u"tomelet://show/..%2FNew.md"_s), u"failed /../New.md does not exist"_s);
    EXPECT_FALSE(itemExists(at(u"/../New.md"_s)));
}

TEST_F(Urls, searchBelowABook)
{
    EXPECT_EQ(run(u"tomelet://search/two%20words&scope=/My%20Book"_s), u"show /My Book, search two words"_s);
    EXPECT_EQ(run(u"tomelet://search/word"_s), u"show , search word"_s);
    EXPECT_EQ(run(u"tomelet://search/word&scope=/gone"_s), u"show , search word"_s);
}

TEST_F(Urls, othersAreToldOrLogged)
{
    EXPECT_EQ(run(u"tomelet://webdav_sync"_s), u"Unsupported URL Scheme\n\"webdav_sync\"|"
                                               "This scheme is intended for Tomelet on an iPad or iPhone."_s);
    EXPECT_EQ(run(u"tomelet://append/x&title=Doc.md"_s), QString());
    EXPECT_EQ(run(u"mailto:x"_s), u"failed no TM scheme: mailto:x"_s);
}

TEST_F(Urls, addNotes)
{
    const auto run = [this](const QString &url) { return this->run(url); };
    test::check(run,
                {
                    {"first line", u"tomelet://addnote/%0AOne/two%0Athree"_s, u"added /One-two.txt"_s},
                    {"again", u"tomelet://addnote/One/two"_s, u"added /One-two 1.txt"_s},
                    {"known extension", u"tomelet://addnote/x&title=T.MD&parent=My%20Book"_s, u"added /My Book/T.MD"_s},
                    {"unknown one", u"tomelet://addnote/x&title=Version%202.0"_s, u"added /Version 2.0.txt"_s},
                    {"missing book", u"tomelet://addnote/x&title=a&parent=gone"_s, u"added /a.txt"_s},
                    {"nothing", u"tomelet://addnote/&title=a"_s, u"failed an empty text makes no document"_s},
                    {"slashes and lines", u"tomelet://addnote/x&title=a%2Fb%0D%0Ac%00d"_s, u"added /a-b.txt"_s},
                    {"control characters", u"tomelet://addnote/x&title=a%09%1Bb"_s, u"added /a  b.txt"_s},
                    {"up and away", u"tomelet://addnote/x&title=..%2F..%2Fup"_s, u"added /up.txt"_s},
                    {"hidden", u"tomelet://addnote/x&title=.bashrc"_s, u"added /bashrc.txt"_s},
                    {"properties", u"tomelet://addnote/x&title=Doc.md.plist&parent=My%20Book"_s,
                     u"added /My Book/Doc.md.plist.txt"_s},
                    {"dots alone", u"tomelet://addnote/x&title=..."_s, u"added /Untitled.txt"_s},
                    {"hidden behind signs", u"tomelet://addnote/x&title=%3A.:.hidden.md"_s, u"added /hidden.md"_s},
                });
    EXPECT_EQ(read(u"/One-two.txt"_s), "\nOne/two\nthree");
    EXPECT_TRUE(plist(u"/One-two.txt.plist"_s).value(u"CreationDate"_s).toDateTime().isValid());
}

TEST_F(Urls, staysBelowTheRoot)
{
    makeBook(u"/.hidden"_s);
    makeBook(u"/TMResources/Misc"_s);
    makeBook(u"/Box.numbers"_s);
    QDir().mkpath(root + u"-beside"_s);
    QFile::link(root + u"-beside"_s, at(u"/Link"_s));
    for (const QString &parent :
         {u".."_s, u"../.."_s, u"../root-beside"_s, u"My Book/../.."_s, u"Link"_s, u"/etc"_s, u".hidden"_s,
          u"TMResources/Misc"_s, u"Box.numbers"_s, u"My Book/Doc.md"_s, QString(), u"/"_s, u"."_s})
        EXPECT_EQ(bookFromOutside(parent), root) << parent.toStdString();
    EXPECT_EQ(bookFromOutside(u"/My Book/"_s), at(u"/My Book"_s));
}

TEST_F(Urls, nothingIsWrittenOver)
{
    const QString name = QString(400, u'ä') + u".md"_s;
    const QString first = writeFromOutside(name, root, "one");
    const QString second = writeFromOutside(name, root, "two");
    EXPECT_NE(first, second);
    EXPECT_EQ(read(first.mid(root.size())), "one");
    EXPECT_EQ(read(second.mid(root.size())), "two");
    EXPECT_EQ(nameFromOutside(QString(500'000, u'x')).size(), 250);
}

// -- pages ------------------------------------------------------------------------------------------------------------

namespace {

FetchedPage html(const QByteArray &body, const QString &charset = {})
{
    FetchedPage page;
    page.body = body;
    page.mediaType = u"text/html"_s;
    page.charset = charset;
    page.address = QUrl(u"http://a.de/dir/"_s);
    return page;
}

} // namespace

TEST_F(Urls, pagesGetTheirTitleAndABase)
{
    page = html("<html><head><title>\nMy &amp; Page </title></head><body></body></html>");
    EXPECT_EQ(run(u"tomelet://grab/http://a.de/dir&title=Given&parent=My%20Book"_s),
              u"imported /My Book/My - Page.html"_s);
    EXPECT_EQ(fetched, u"http://a.de/dir"_s);
    EXPECT_EQ(read(u"/My Book/My - Page.html"_s),
              "<html><head>\n<base href=\"http://a.de/dir/\">\n<title>\nMy &amp; Page "
              "</title></head><body></body></html>");
    const QVariantMap properties = plist(u"/My Book/My - Page.html.plist"_s);
    EXPECT_EQ(properties.value(u"URL"_s), u"http://a.de/dir"_s);
    EXPECT_TRUE(properties.value(u"CreationDate"_s).toDateTime().isValid());

    const QByteArray based = "<head><base href=\"/x\"></head>";
    page = html(based);
    EXPECT_EQ(run(u"tomelet://grab/a.de/dir&title=Given.html"_s), u"imported /Given.html"_s);
    EXPECT_EQ(read(u"/Given.html"_s), based);
}

TEST_F(Urls, pagesKeepTheirCharset)
{
    // "Заря" in the charset of the header; the page says so itself, or does not.
    const QByteArray title = "<title>\xc7\xe0\xf0\xff</title>";
    page = html("<head><meta charset=windows-1251>" + title + "</head>", u"windows-1251"_s);
    EXPECT_EQ(run(u"tomelet://grab/a.de"_s), u"imported /Заря.html"_s);
    EXPECT_TRUE(read(u"/Заря.html"_s).endsWith(QByteArray(title + "</head>")));
    page = html("<head>" + title + "</head>", u"windows-1251"_s);
    EXPECT_EQ(run(u"tomelet://grab/a.de"_s), u"imported /Заря 1.html"_s);
    EXPECT_TRUE(read(u"/Заря 1.html"_s).contains("<title>Заря</title>"));

    // What cannot be read in the charset told is stored as it came.
    for (const QString &charset : {QString(), u"no-such-charset"_s, u"utf-8"_s}) {
        page = html("<head>" + title + "</head>", charset);
        const QString made = run(u"tomelet://grab/a.de/raw"_s);
        EXPECT_EQ(read(made.mid(9)), "<head>" + title + "</head>") << made.toStdString();
    }
}

TEST_F(Urls, filesAreNamedByWhatTheyAre)
{
    const auto stored = [this](const QString &url, const QString &type, const QString &suggested) {
        page = {};
        page.body = "x";
        page.mediaType = type;
        page.suggestedName = suggested;
        page.address = QUrl(u"http://a.de"_s);
        return run(u"tomelet://grab/"_s + url);
    };
    EXPECT_EQ(stored(u"a.de/p/pic.jpg"_s, u"image/jpeg"_s, {}), u"imported /pic.jpeg"_s);
    EXPECT_EQ(stored(u"a.de/p/data"_s, u"application/x-unknown"_s, {}), u"imported /data.txt"_s);
    EXPECT_EQ(stored(u"a.de/get?id=1"_s, u"application/pdf"_s, u"../Some report.pdf"_s),
              u"imported /Some report.pdf"_s);
    EXPECT_EQ(stored(u"a.de/get&title=My%20own%202.1"_s, u"application/pdf"_s, u"x.pdf"_s),
              u"imported /My own 2.1.pdf"_s);
    EXPECT_EQ(stored(u"a.de"_s, QString(), {}), u"imported /a.de.txt"_s);
    page = {};
    page.error = u"no such host"_s;
    EXPECT_EQ(run(u"tomelet://grab/a.de"_s), u"failed error: no such host"_s);
    fetched.clear();
    EXPECT_EQ(run(u"tomelet://grab/"_s), u"failed there is no address"_s);
    EXPECT_EQ(fetched, QString());
}

// -- services ---------------------------------------------------------------------------------------------------------

namespace {

class Services : public test::Notebook, public ServiceShell
{
public:
    void openQuickNote() override { ++quickNotes; }
    bool insertIntoFrontmostDocument(const QString &text) override
    {
        inserted = text;
        return true;
    }

protected:
    QString added(const SelectedText &selection) { return provider.addSelection(selection).mid(root.size()); }

    int quickNotes = 0;
    QString inserted;
    TMLTServiceProvider provider{*this};
};

} // namespace

TEST_F(Services, selectionsGoToTheInbox)
{
    EXPECT_EQ(added({u"One: two?\nthree"_s, {}}), u"/One- two.txt"_s);
    makeBook(u"/Inbox"_s);
    settings().setObject(u"defaultInbox"_s, u"/Inbox"_s);
    EXPECT_EQ(added({u"plain"_s, u"<p>rich <b>text</b></p>"_s}), u"/Inbox/plain.txt"_s);
    EXPECT_EQ(read(u"/Inbox/plain.txt"_s).trimmed(), "rich text");
    EXPECT_EQ(provider.addSelectionPlain({u"plain"_s, u"<p>rich</p>"_s}), at(u"/Inbox/plain 1.txt"_s));
    EXPECT_EQ(read(u"/Inbox/plain 1.txt"_s), "plain");
    settings().setObject(u"defaultInbox"_s, u"/Gone"_s);
    EXPECT_EQ(added({u"/etc/passwd"_s, {}}), u"/etc-passwd.txt"_s);
    EXPECT_EQ(added({u" \n"_s, {}}), QString());
}

TEST_F(Services, notesAndInsertionsGoToTheWindows)
{
    provider.addQuickNote();
    EXPECT_EQ(quickNotes, 0);
    platform().delayedCalls.drain();
    EXPECT_EQ(quickNotes, 1);
    EXPECT_FALSE(provider.insertIntoCurrentDocument({}));
    EXPECT_TRUE(provider.insertIntoCurrentDocument({u"text"_s, u"<b>text</b>"_s}));
    EXPECT_EQ(inserted, u"text"_s);
}

} // namespace tomelet
