// SPDX-License-Identifier: GPL-3.0-or-later
// Texts through the whole pipeline and pages back to Markdown, beside the Markdown engine alone and beside a
// parse of the same page by libxml2.
#include "conversion/HtmlToMarkdown.h"
#include "conversion/MarkdownToHtml.h"
#include "engine/Engine.h"
#include "foundation/Platform.h"

#include <libxml/HTMLparser.h>

#include <benchmark/benchmark.h>

#include <chrono>

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

const QString words = u"Words of a line that goes on and on. "_s.repeated(25);

const QString mixture = filling.repeated(3) + uR"(<h2 id="a">Title</h2>
<ul><li>one<ul><li>two</li></ul></li></ul>
<blockquote><p>q</p></blockquote>
<table><thead><tr><th>A</th><th>B</th></tr></thead><tbody><tr><td>1</td><td>2</td></tr></tbody></table>
<p><img src="a.png" alt="x"></p><dl><dt>T</dt><dd>D</dd></dl>
)"_s;

// A kind of page: what is repeated at its begin, with about a kilobyte of text each, and what at its end.
struct PageKind
{
    const char *name;
    QString open, inside, close;

    [[nodiscard]] QString page(qsizetype elements) const
    {
        return u"<html><body>\n"_s + QString(open + inside).repeated(elements) + close.repeated(elements) +
               u"</body></html>"_s;
    }
};

const QString lines = filling.repeated(12);

const PageKind kinds[] = {
    {"mixed", u""_s, mixture.repeated(2), u""_s},
    {"unordered_lists", u"<ul><li>"_s, lines, u"</li></ul>"_s},
    {"ordered_lists", u"<ol><li>"_s, lines, u"</li></ol>"_s},
    {"quotes", u"<blockquote>"_s, lines, u"</blockquote>"_s},
    {"divs", u"<div class=\"x\">"_s, lines, u"</div>"_s},
    {"tables", u"<table><tr><td>"_s, lines, u"</td></tr></table>"_s},
    {"spans", u"<span style=\"x\">"_s, lines, u"</span>"_s},
    {"paragraphs", u"<p>"_s, lines, u"</p>"_s},
    {"bold", u"<b>"_s, lines, u"</b>"_s},
    {"links", u"<a href=\"x\">"_s, lines, u"</a>"_s},
    {"definitions", u"<dl><dt>T</dt><dd>"_s, lines, u"</dd></dl>"_s},
    {"all_kinds", u"<div><blockquote><ul><li><p><b><span>"_s, lines, u"</span></b></p></li></ul></blockquote></div>"_s},
    {"lists_in_tables", u"<table><tr><td>a < b<ul><li>"_s, lines, u"</li></ul></td></tr></table>"_s},
    {"lists_on_one_line", u"<ul><li>"_s, words, u"</li></ul>"_s},
    {"quotes_on_one_line", u"<blockquote>"_s, words, u"</blockquote>"_s},
    {"italic_on_one_line", u"<i class=\"x\">"_s, words, u"</i>"_s},
    {"bold_never_closed", u"<b class=\"x\">"_s, words, u""_s},
};

double secondsOf(const QString &page)
{
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(tm_markdownifyHTML(page));
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Ten times the page should take ten times as long, not a hundred times.
void markdownOfPage(benchmark::State &state, const PageKind &kind)
{
    begin(1);
    const QString large = kind.page(1000);
    const QString small = kind.page(100);
    double time = 0;
    double timeOfSmall = 0;
    for (auto _ : state) {
        time += secondsOf(large);
        state.PauseTiming();
        timeOfSmall += secondsOf(small);
        state.ResumeTiming();
    }
    state.counters["of_ten_times_smaller"] = time / timeOfSmall;
    state.SetBytesProcessed(state.iterations() * large.size());
}

void parseOfPage(benchmark::State &state, const PageKind &kind)
{
    const QByteArray bytes = kind.page(1000).toUtf8();
    for (auto _ : state)
        xmlFreeDoc(htmlReadMemory(bytes.constData(), int(bytes.size()), nullptr, "UTF-8",
                                  HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING));
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

bool registerPages()
{
    for (const PageKind &kind : kinds) {
        const std::string suffix = std::string("/") + kind.name;
        benchmark::RegisterBenchmark(("markdownOfPage" + suffix).c_str(), [&](auto &s) {
            markdownOfPage(s, kind);
        })->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("parseOfPage" + suffix).c_str(), [&](auto &s) {
            parseOfPage(s, kind);
        })->Unit(benchmark::kMillisecond);
    }
    return true;
}

const bool registered = registerPages();

} // namespace

BENCHMARK_CAPTURE(pageOfMarkdown, ownEngine, 1)->Arg(20000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pageOfMarkdown, discount, 0)->Arg(20000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(engineAlone)->Arg(20000)->Arg(1000000)->Unit(benchmark::kMillisecond);
