// SPDX-License-Identifier: GPL-3.0-or-later
// Documents of every kind are opened in the real views, clicked into and closed: no byte and no date may change. More
// of them come from the folder that TOMELET_CORPUS names, which is copied first.
#include "tests/support/Notebook.h"

#include "conversion/MarkdownToHtml.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/page/TMLTWebView.h"
#include "desktop/text/TMLTTextView.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"

#include <QApplication>
#include <QDirIterator>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

#include <map>
#include <vector>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

struct Document
{
    QString path;
    QByteArray bytes;
    std::optional<FileStamp> stamp;
};

class Untouched : public tomelet::test::Notebook
{
protected:
    Untouched()
    {
        for (const char *key : {"contextsEnabled", "extractContextsAutomatically", "manageLinks", "cleanUpAttachments",
                                "openWebarchivesWithTMLTMethods"})
            settings().setObject(QString::fromLatin1(key), true);
        pane.resize(700, 500);
        pane.show();
    }
    // What the platform's own files rarely are.
    void writeOddOnes() const
    {
        const QByteArray text = "Title\n\nSome *text* with @context and [a link](b.md).\n";
        const QByteArray wide(reinterpret_cast<const char *>(u"\xfeffTitle\r\n\r\nwide\r\n"), 34);
        const std::vector<std::pair<const char *, QByteArray>> odd{
            {"plain.txt", text},
            {"noend.md", "Title"},
            {"empty.md", ""},
            {"crlf.txt", "a\r\nb\r\n"},
            {"mixed.md", "a\r\nb\nc\rd\n\r\n"},
            {"latin.txt", "caf\xe9 na\xefve\n"},
            {"bom.md", "\xef\xbb\xbf# Title\n"},
            {"utf16.txt", wide},
            {"lone.txt", QByteArray("\xff\xfe\x3d\xd8\x41\x00", 6)},
            {"binary.txt", QByteArray("\x7f"
                                      "ELF\0\1\2\xff\xfe\n",
                                      11)},
            {"nul.md", QByteArray("a\0b\n", 4)},
            {"separators.txt", "a\xe2\x80\xa8"
                               "b\xe2\x80\xa9"
                               "c\x0c"
                               "d\x0b\n"},
            {"foreign.html", "<html>\r\n<body bgcolor=red>\n<P>un<b>closed <p>x</body>\n\n"},
            {"bare.html", "only text"},
            {"mail.eml", "From: a@b.c\r\nSubject: Hi\r\n\r\nText\r\n"},
            {"outline.opml", "<opml><body><outline text=\"a\"/></body></opml>"},
            {"script.fountain", "Title: T\n\nINT. ROOM - DAY\n\nText.\n"},
            {"nowhere.url", "URL=http://127.0.0.1:9/"},
            {"notes.enex", "<en-export><note><title>t</title></note></en-export>"},
            {"page.webarchive", "<plist><dict><key>WebMainResource</key><dict><key>WebResourceData</key><data>PHA+"
                                "dDwvcD4=</data></dict></dict></plist>"},
            {"broken.itmz", "PK\3\4"},
            {"broken.pdf", "%PDF-1.4\nnothing"},
            {"broken.png", "\x89PNG\r\n"},
            {"notes.rtf", "{\\rtf1 text}"},
            {"noextension", text},
        };
        for (const auto &[name, bytes] : odd) write(QStringLiteral("/Odd/") + QString::fromLatin1(name), bytes);
        write(QStringLiteral("/Odd/own.html"), tm_createFormattedDocWithBody(at(QStringLiteral("/Odd/own.html")),
                                                                             QStringLiteral("<h1>own</h1><p>text</p>"))
                                                   .toUtf8());
    }
    void copyCorpus() const
    {
        const QString corpus = qEnvironmentVariable("TOMELET_CORPUS");
        if (corpus.isEmpty()) return;
        int number = 0;
        for (QDirIterator files(corpus, QDir::Files, QDirIterator::Subdirectories); files.hasNext();) {
            const QString file = files.next();
            const auto bytes = readFile(file);
            if (!bytes) {
                ADD_FAILURE() << "not read: " << file.toStdString();
                continue;
            }
            const QString name = QString::number(++number) + u' ' + QFileInfo(file).fileName();
            write(QStringLiteral("/Corpus/%1/%2").arg(number / 500).arg(name), *bytes);
        }
    }
    [[nodiscard]] std::vector<Document> documents() const
    {
        std::vector<Document> found;
        for (QDirIterator files(root, QDir::Files, QDirIterator::Subdirectories); files.hasNext();) {
            const QString path = files.next();
            found.push_back({path, readFile(path).value_or(QByteArray()), fileStamp(path)});
        }
        return found;
    }
    // As a person does who only looks, or who clicks into it as well.
    void look(const QString &path, bool clicks)
    {
        pane.showDocument(path);
        EXPECT_EQ(pane.path(), path);
        if (pane.shownWidget() == pane.textView()) {
            if (clicks) QTest::mouseClick(pane.textView()->viewport(), Qt::LeftButton);
            QApplication::processEvents();
            return;
        }
        (void)QTest::qWaitFor([this] { return pane.view()->isReady(); }, 150); // viewers never are
        if (clicks) Q_EMIT pane.view()->editingWanted(false);
        QApplication::processEvents();
    }

    ItemActions actions;
    DocumentPane pane{actions};
};

} // namespace

TEST_F(Untouched, whatWasOnlyOpenedStaysAsItIs)
{
    writeOddOnes();
    copyCorpus();
    const std::vector<Document> before = documents();
    for (const bool plain : {true, false}) {
        settings().setObject(QStringLiteral("showMarkdownAsPlainText"), plain);
        for (const Document &document : before) look(document.path, plain);
        pane.showDocument({});
    }
    for (const Document &document : before) {
        EXPECT_EQ(readFile(document.path).value_or(QByteArray()), document.bytes) << document.path.toStdString();
        EXPECT_TRUE(fileStamp(document.path) == document.stamp) << document.path.toStdString();
    }
    std::map<std::string, int> kinds;
    for (const Document &document : before)
        ++kinds["kind." + QFileInfo(document.path).suffix().toLower().toStdString()];
    for (const auto &[kind, count] : kinds) RecordProperty(kind, count);
}
