// SPDX-License-Identifier: GPL-3.0-or-later
// Texts through the whole pipeline and pages back to Markdown, beside the Markdown engine alone and beside a parse of
// the same page by libxml2.
#include "conversion/HtmlToMarkdown.h"
#include "conversion/MarkdownToHtml.h"
#include "engine/Engine.h"
#include "foundation/Platform.h"

#include <libxml/HTMLparser.h>

#include <benchmark/benchmark.h>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

const QString section = uR"(## Section about things

A paragraph with *emphasis*, **strong** words, `code`, a [link](https://example.org/a b) and a
[[Book/Other Note.md]] on several lines, ==marked== words and an inline note^[that says more].

- [ ] a task
- [x] a task that is done
    - nested item
    1. numbered

| A | B |
|---|--:|
| 1 | 2 |

~~~~
fenced ==code== with [a](link)
~~~~

> %note%
> A block of a class.

![](image.png) and plain text that goes on for a while, as texts do, without any mark in it at all until
the line and the paragraph come to their end.

)"_s;

QString markdownOf(qsizetype size)
{
    return section.repeated(size / section.size() + 1);
}

void begin(int converter)
{
    auto made = makePlatform();
    made->settings = makeMemorySettings();
    made->settings->setObject(u"MarkdownConverter"_s, converter);
    setPlatform(std::move(made));
}

void pageOfMarkdown(benchmark::State &state, int converter)
{
    begin(converter);
    const QString text = markdownOf(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(tm_markdownToHTML(text));
    state.SetBytesProcessed(state.iterations() * text.size());
}

void engineAlone(benchmark::State &state)
{
    const QByteArray text = markdownOf(state.range(0)).toUtf8();
    for (auto _ : state) {
        engine::d_string *source = engine::d_string_new(text.constData());
        engine::d_string *html = engine::mmd_d_string_convert(source, 8720, engine::FORMAT_HTML, engine::LANG_EN, "");
        benchmark::DoNotOptimize(html);
        engine::d_string_free(html, true);
        engine::d_string_free(source, true);
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}

const QString filling = u"<p>Some <b>bold</b> text with a <a href=\"https://example.org/x\">link</a>.</p>\n"_s;

// About a megabyte with a thousand elements in one another.
QString nestedPage(const QString &open, const QString &close)
{
    const QString inside = filling.repeated(12);
    return u"<html><body>\n"_s + QString(open + inside).repeated(1000) + close.repeated(1000) + u"</body></html>"_s;
}

QString flatPage()
{
    const QString once = filling.repeated(3) +
                         u"<h2 id=\"a\">Title</h2>\n<ul><li>one<ul><li>two</li></ul></li></ul>\n<blockquote><p>q</p></blockquote>\n"
                         "<table><thead><tr><th>A</th><th>B</th></tr></thead><tbody><tr><td>1</td><td>2</td></tr></tbody></table>\n"
                         "<p><img src=\"a.png\" alt=\"x\"></p><dl><dt>T</dt><dd>D</dd></dl>\n"_s;
    return u"<html><body>\n"_s + once.repeated(1000000 / once.size()) + u"</body></html>"_s;
}

const std::pair<const char *, QString> pages[] = {
    {"mixed", flatPage()},
    {"lists", nestedPage(u"<ul><li>"_s, u"</li></ul>"_s)},
    {"quotes", nestedPage(u"<blockquote>"_s, u"</blockquote>"_s)},
    {"divs", nestedPage(u"<div class=\"x\">"_s, u"</div>"_s)},
    {"tables", nestedPage(u"<table><tr><td>"_s, u"</td></tr></table>"_s)},
    {"spans", nestedPage(u"<span style=\"x\">"_s, u"</span>"_s)},
    {"paragraphs", nestedPage(u"<p>"_s, u"</p>"_s)},
};

void markdownOfPage(benchmark::State &state, const QString &page)
{
    begin(1);
    for (auto _ : state) benchmark::DoNotOptimize(tm_markdownifyHTML(page));
    state.SetBytesProcessed(state.iterations() * page.size());
}

void parseOfPage(benchmark::State &state, const QString &page)
{
    const QByteArray bytes = page.toUtf8();
    for (auto _ : state)
        xmlFreeDoc(htmlReadMemory(bytes.constData(), int(bytes.size()), nullptr, "UTF-8",
                                  HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING));
    state.SetBytesProcessed(state.iterations() * page.size());
}

bool registerPages()
{
    for (const auto &[name, page] : pages) {
        const std::string suffix = std::string("/") + name;
        benchmark::RegisterBenchmark(("markdownOfPage" + suffix).c_str(), [&](auto &s) { markdownOfPage(s, page); })
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("parseOfPage" + suffix).c_str(), [&](auto &s) { parseOfPage(s, page); })
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}

const bool registered = registerPages();

} // namespace

BENCHMARK_CAPTURE(pageOfMarkdown, ownEngine, 1)->Arg(20000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pageOfMarkdown, discount, 0)->Arg(20000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(engineAlone)->Arg(20000)->Arg(1000000)->Unit(benchmark::kMillisecond);
