// SPDX-License-Identifier: GPL-3.0-or-later
// The regular-expression layer beside the plain calls of ICU, once compiled anew for each text and once kept.
#include "conversion/Patterns.h"
#include "conversion/RegexLayer.h"

#include <QStringList>

#include <benchmark/benchmark.h>

#include <unicode/uregex.h>

using namespace tomelet;

namespace {

const QString pattern = QStringLiteral("(?:^|/)\\.[^/]+$|~$|\\.(?:plist|__sidecar)$");

const QStringList &paths()
{
    static const QStringList all = [] {
        QStringList made;
        for (int i = 0; i < 1000; ++i)
            made.append(QStringLiteral("/home/person/Notes/Book %1/Document %2.%3")
                            .arg(i % 20)
                            .arg(i)
                            .arg(i % 10 ? QStringLiteral("md") : QStringLiteral("md.plist")));
        return made;
    }();
    return all;
}

const QString &longText()
{
    static const QString text =
        QStringLiteral("Some *emphasis* and a [link](target.md), then more text.\n").repeated(2000);
    return text;
}

URegularExpression *compiled(const QString &regex)
{
    UErrorCode status = U_ZERO_ERROR;
    return uregex_open(reinterpret_cast<const UChar *>(regex.utf16()), int32_t(regex.size()), 0, nullptr, &status);
}

bool finds(URegularExpression *regex, const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(regex, reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()), &status);
    return uregex_find(regex, 0, &status);
}

void testLayer(benchmark::State &state)
{
    for ([[maybe_unused]] const auto _ : state)
        for (const QString &path : paths()) benchmark::DoNotOptimize(isMatchedByRegex(path, pattern));
}

void testKept(benchmark::State &state)
{
    URegularExpression *regex = compiled(pattern);
    for ([[maybe_unused]] const auto _ : state)
        for (const QString &path : paths()) benchmark::DoNotOptimize(finds(regex, path));
    uregex_close(regex);
}

void testCompiledAnew(benchmark::State &state)
{
    for ([[maybe_unused]] const auto _ : state)
        for (const QString &path : paths()) {
            URegularExpression *regex = compiled(pattern);
            benchmark::DoNotOptimize(finds(regex, path));
            uregex_close(regex);
        }
}

const QString linkPattern = QStringLiteral("\\[([^\\]]+)\\]\\(([^)]+)\\)");

void matchesLayer(benchmark::State &state)
{
    for ([[maybe_unused]] const auto _ : state)
        benchmark::DoNotOptimize(matchesOfPattern(longText(), linkPattern).size());
}

void matchesKept(benchmark::State &state)
{
    URegularExpression *regex = compiled(linkPattern);
    for ([[maybe_unused]] const auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        std::vector<Range> ranges;
        for (bool found = finds(regex, longText()); found; found = uregex_findNext(regex, &status))
            for (int group = 0; group < 3; ++group) {
                const int32_t begin = uregex_start(regex, group, &status);
                ranges.push_back({begin, uregex_end(regex, group, &status) - begin});
            }
        benchmark::DoNotOptimize(ranges.size());
    }
    uregex_close(regex);
}

} // namespace

BENCHMARK(testLayer)->Name("1,000 paths tested: regex layer")->Unit(benchmark::kMillisecond);
BENCHMARK(testKept)->Name("1,000 paths tested: peer, uregex kept by hand")->Unit(benchmark::kMillisecond);
BENCHMARK(testCompiledAnew)->Name("1,000 paths tested: peer, uregex opened each time")->Unit(benchmark::kMillisecond);
BENCHMARK(matchesLayer)->Name("2,000 links collected: matchesOfPattern")->Unit(benchmark::kMillisecond);
BENCHMARK(matchesKept)->Name("2,000 links collected: peer, uregex by hand")->Unit(benchmark::kMillisecond);
