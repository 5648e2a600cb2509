// SPDX-License-Identifier: GPL-3.0-or-later
// The plain text editor's widget: a key until it is on the screen and a document until it is, beside a bare text widget
// with the same text. Runs without a screen.
#include "desktop/text/TMLTTextView.h"
#include "foundation/Platform.h"

#include <QApplication>
#include <QTest>

#include <benchmark/benchmark.h>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

constexpr qsizetype megabyte = 1024 * 1024;

QString document()
{
    const QString section =
        QStringLiteral("## A section with `code`\n\nSome *words* that are **strong**, a [link](Other.md), "
                       "a [[Wiki Link]] and a [note][^1]. The text goes on for a while, as texts do, "
                       "with an <em>odd tag</em> and a context @home.\n\n1. first\n2. second\n"
                       "- [ ] to do\n- [x] done\n\n```\ncode\n```\n\n[^1]: A footnote.\n\n");
    return section.repeated(megabyte / section.size() + 1).left(megabyte);
}

QString endlessLine()
{
    return QStringLiteral("{\"key\": \"some *words* that go on\", \"n\": 12345},")
        .repeated(megabyte / 46)
        .left(1'000'000);
}

// Until what the background does is over.
template <typename View>
void show(View &view, const QString &text)
{
    view.resize(800, 900);
    view.show();
    if constexpr (std::is_same_v<View, TMLTTextView>)
        view.setDocumentText(text, true, highlightOptions(QStringLiteral("md")));
    else view.setPlainText(text);
    QTest::qWait(3000);
}

template <typename View>
void typeInto(benchmark::State &state, const QString &text, int caret)
{
    View view;
    show(view, text);
    QTextCursor cursor = view.textCursor();
    cursor.setPosition(caret);
    view.setTextCursor(cursor);
    for (auto _ : state) {
        QTest::keyClick(&view, Qt::Key_X);
        QApplication::processEvents();
        view.viewport()->repaint();
    }
}

void typeInLarge(benchmark::State &state)
{
    typeInto<TMLTTextView>(state, document(), megabyte / 2);
}
void typeInLargeBare(benchmark::State &state)
{
    typeInto<QPlainTextEdit>(state, document(), megabyte / 2);
}
void typeInEndless(benchmark::State &state)
{
    typeInto<TMLTTextView>(state, endlessLine(), 500'000);
}
void typeInEndlessBare(benchmark::State &state)
{
    typeInto<QPlainTextEdit>(state, endlessLine(), 500'000);
}

template <typename View>
void open(benchmark::State &state, const QString &text)
{
    for (auto _ : state) {
        View view;
        view.resize(800, 900);
        view.show();
        if constexpr (std::is_same_v<View, TMLTTextView>)
            view.setDocumentText(text, true, highlightOptions(QStringLiteral("md")));
        else view.setPlainText(text);
        view.viewport()->repaint();
    }
}

void openLarge(benchmark::State &state)
{
    open<TMLTTextView>(state, document());
}
void openLargeBare(benchmark::State &state)
{
    open<QPlainTextEdit>(state, document());
}
void openEndless(benchmark::State &state)
{
    open<TMLTTextView>(state, endlessLine());
}
void openEndlessBare(benchmark::State &state)
{
    open<QPlainTextEdit>(state, endlessLine());
}

BENCHMARK(openLarge)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(openLargeBare)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(openEndless)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(openEndlessBare)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(typeInLarge)->Unit(benchmark::kMillisecond)->Iterations(100);
BENCHMARK(typeInLargeBare)->Unit(benchmark::kMillisecond)->Iterations(100);
BENCHMARK(typeInEndless)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(typeInEndlessBare)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    auto platform = std::make_unique<Platform>();
    platform->settings = makeMemorySettings();
    for (const char *key : {"HighlightMarkdown", "AutoIndentLists", "insertClosingCharacters", "highlightCurrentLine"})
        platform->settings->setObject(QString::fromLatin1(key), true);
    setPlatform(std::move(platform));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
