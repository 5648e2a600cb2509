// SPDX-License-Identifier: GPL-3.0-or-later
// A key in a document of 1 MB, and the same document highlighted as a whole, beside bare scans of the text by ICU; a
// document opened and saved by its controller, beside reading and writing its bytes.
#include "editor/EditorCommands.h"
#include "editor/Highlighting.h"
#include "editor/TMLTDocumentViewController.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "tests/editor/FakeDocumentView.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <unicode/uregex.h>

using namespace tomelet;

namespace {

constexpr qsizetype megabyte = 1024 * 1024;

QString document(qsizetype size)
{
    const QString section =
        QStringLiteral("## A section with `code`\n\nSome *words* that are **strong**, a [link](Other.md), "
                       "a [[Wiki Link]] and a [note][^1]. The text goes on for a while, as texts do, "
                       "with an <em>odd tag</em> and a context @home.\n\n1. first\n2. second\n"
                       "- [ ] to do\n- [x] done\n\n```\ncode\n```\n\n[^1]: A footnote.\n\n");
    return section.repeated(size / section.size() + 1).left(size);
}

HighlightOptions options()
{
    HighlightOptions all;
    all.extension = QStringLiteral("md");
    all.contexts = all.autoIndentLists = true;
    all.contextMarkers = QStringLiteral("@#");
    return all;
}

void key(benchmark::State &state, EditorCommand command, const QString &typed)
{
    const QString text = document(megabyte);
    EditorSettings settings;
    settings.autoIndentLists = settings.insertClosingCharacters = true;
    const qsizetype caret = text.indexOf(u"second", megabyte / 2) + 6;
    for (auto _ : state) {
        EditedText edited(text, {caret, 0});
        applyEditorCommand(edited, command, {typed, {}, 0}, settings);
        const Range line = tm_highlightCurrentLine(edited.text(), edited.selection());
        benchmark::DoNotOptimize(stylesInRange(edited.text(), line, options()));
    }
}

void typeLetter(benchmark::State &state)
{
    key(state, EditorCommand::Type, QStringLiteral("x"));
}
void typeNewLine(benchmark::State &state)
{
    key(state, EditorCommand::NewLine, {});
}

void wholeText(benchmark::State &state)
{
    const QString text = document(state.range(0) * 1024);
    for (auto _ : state) benchmark::DoNotOptimize(stylesInRange(text, {0, text.size()}, options()));
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
}

// The peer: each pattern once over the whole text by ICU alone, matches counted and thrown away.
void bareScan(benchmark::State &state)
{
    const QString text = document(state.range(0) * 1024);
    for (auto _ : state) {
        qsizetype count = 0;
        for (const HighlightRow &row : highlightRows()) {
            if (row.pattern.contains(u"%1")) continue;
            UErrorCode status = U_ZERO_ERROR;
            uint32_t flags = 0;
            if (row.options & PatternLineAnchored) flags |= UREGEX_MULTILINE;
            if (row.options & PatternDotAll) flags |= UREGEX_DOTALL;
            URegularExpression *regex =
                uregex_open(reinterpret_cast<const UChar *>(row.pattern.utf16()), -1, flags, nullptr, &status);
            uregex_setText(regex, reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()), &status);
            while (uregex_findNext(regex, &status)) ++count;
            uregex_close(regex);
        }
        benchmark::DoNotOptimize(count);
    }
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
}

// A notebook with one document of 1 MB in it.
struct World
{
    World()
    {
        auto made = std::make_unique<Platform>();
        made->settings = makeMemorySettings();
        made->settings->setObject(QStringLiteral("TomeletFolder"), folder.path());
        for (const char *key : {"manageLinks", "contextsEnabled", "extractContextsAutomatically"})
            made->settings->setObject(QString::fromLatin1(key), true);
        setPlatform(std::move(made));
        (void)writeFile(path, document(megabyte).toUtf8());
    }
    ~World() { setPlatform(nullptr); }
    QTemporaryDir folder;
    QString path = folder.path() + QStringLiteral("/Large.txt");
};

void openDocument(benchmark::State &state)
{
    World world;
    FakeDocumentView view;
    TMLTDocumentViewController controller(view);
    for (auto _ : state) controller.openDocument(world.path);
}

void readBytes(benchmark::State &state)
{
    World world;
    for (auto _ : state) benchmark::DoNotOptimize(readFile(world.path));
}

void saveDocument(benchmark::State &state)
{
    World world;
    FakeDocumentView view;
    TMLTDocumentViewController controller(view);
    controller.openDocument(world.path);
    for (auto _ : state) {
        (void)controller.shouldChangeText(false);
        view.plainText += u'x';
        controller.textDidChange();
        controller.writeTextToFile();
    }
}

// The same while somebody types. The processor time is what typing waits for: the beginning and the end of the save;
// the thread that does the rest has its own.
void autosaveDocument(benchmark::State &state)
{
    World world;
    FakeDocumentView view;
    TMLTDocumentViewController controller(view);
    controller.openDocument(world.path);
    for (auto _ : state) {
        (void)controller.shouldChangeText(false);
        view.plainText += u'x';
        controller.textDidChange();
        controller.autosave();
        controller.waitForSave();
    }
}

void writeBytes(benchmark::State &state)
{
    World world;
    const QByteArray bytes = document(megabyte).toUtf8();
    for (auto _ : state) (void)writeFile(world.path, bytes);
}

BENCHMARK(openDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(readBytes)->Unit(benchmark::kMillisecond);
BENCHMARK(saveDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(autosaveDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(writeBytes)->Unit(benchmark::kMillisecond);
BENCHMARK(typeLetter)->Unit(benchmark::kMicrosecond);
BENCHMARK(typeNewLine)->Unit(benchmark::kMicrosecond);
BENCHMARK(wholeText)->Arg(64)->Arg(256)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(bareScan)->Arg(64)->Arg(256)->Arg(1024)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
