// SPDX-License-Identifier: GPL-3.0-or-later
// bench_engine [FILE...]: how fast the engine converts beside other libraries, how its time and memory grow
// with the text, and what two threads give. Time is the thread's processor time, so that a busy machine
// disturbs it little; without files the text is made up.
#include "Peers.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tomelet::bench;
using Convert = size_t (*)(const std::string &);

struct Peer
{
    const char *name;
    Convert convert;
};

constexpr Peer peers[] = {{"tomelet", convertWithEngine},
                          {"cmark", convertWithCmark},
                          {"md4c", convertWithMd4c},
                          {"discount", convertWithDiscount}};

double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

const char *const sample = "Heading\n=======\n\nA paragraph with *emphasis*, **strong** words, `code` and a "
                           "[link](http://example.org/a?b=c "
                           "\"title\").\nIts second line has an ![image](a.png) and an "
                           "<http://example.org>.\n\n* one\n* two\n    * nested\n\n"
                           "> a quote\n> of two lines\n\n```c\nint x = 1 < 2;\n```\n\n| a | b "
                           "|\n|---|---|\n| 1 | 2 |\n\n1. first\n\n2. second\n\n";

std::string sampleOf(size_t bytes)
{
    std::string text;
    while (text.size() < bytes) text += sample;
    return text;
}

std::vector<std::string> textsOf(int count, char **names)
{
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) {
        std::ifstream file(names[i], std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    if (texts.empty()) texts.push_back(sampleOf(4 << 20));
    return texts;
}

double megabytes(const std::vector<std::string> &texts)
{
    size_t bytes = 0;
    for (const std::string &text : texts) bytes += text.size();
    return static_cast<double>(bytes) / 1e6;
}

double secondsFor(Convert convert, const std::vector<std::string> &texts)
{
    const double start = threadSeconds();
    size_t written = 0;
    for (const std::string &text : texts) written += convert(text);
    return written == 0 ? 0 : threadSeconds() - start;
}

// The best of some rounds, in which the peers take turns.
void compare(const std::vector<std::string> &texts)
{
    constexpr int rounds = 5;
    double best[std::size(peers)];
    for (double &seconds : best) seconds = 1e9;
    for (int round = 0; round < rounds; ++round)
        for (size_t i = 0; i < std::size(peers); ++i) {
            const double seconds = secondsFor(peers[i].convert, texts);
            if (seconds < best[i]) best[i] = seconds;
        }
    std::printf("%zu documents, %.2f MB\n", texts.size(), megabytes(texts));
    for (size_t i = 0; i < std::size(peers); ++i)
        std::printf("  %-9s %8.1f MB/s   tomelet is %.2f times as fast\n", peers[i].name, megabytes(texts) / best[i],
                    best[i] / best[0]);
}

// What /proc says of this process, in megabytes.
double statusMegabytes(const std::string &key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key)) return std::stod(line.substr(key.size() + 1)) * 1024 / 1e6;
    return 0;
}

// The peak of memory during a conversion, less what the process held before it.
double peakMegabytes(const std::string &text)
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5; // the peak starts anew
    const double before = statusMegabytes("VmRSS");
    convertWithEngine(text);
    return statusMegabytes("VmHWM") - before;
}

double rate(Convert convert, const std::string &text)
{
    const size_t rounds = std::max<size_t>(1, 1000000 / text.size());
    return static_cast<double>(rounds * text.size()) / 1e6 / secondsFor(convert, std::vector(rounds, text));
}

void grow(const std::vector<std::string> &texts)
{
    std::string all;
    for (const std::string &text : texts) all += text + "\n\n";
    std::printf("growth: bytes, MB/s, cmark's MB/s, memory as a multiple of the text\n");
    for (size_t size = 10000; size <= 100000000; size *= 10) {
        std::string text;
        while (text.size() < size) text += all.substr(0, size - text.size());
        std::printf("  %9zu %8.1f %8.1f   %.1f\n", text.size(), rate(convertWithEngine, text),
                    rate(convertWithCmark, text), peakMegabytes(text) * 1e6 / static_cast<double>(text.size()));
    }
}

double wallSecondsWithThreads(int count, const std::vector<std::string> &texts)
{
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back([&texts] { secondsFor(convertWithEngine, texts); });
    for (std::thread &thread : threads) thread.join();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void runSideBySide(const std::vector<std::string> &texts)
{
    const double one = wallSecondsWithThreads(1, texts);
    const double two = wallSecondsWithThreads(2, texts);
    std::printf("two threads convert %.2f times as much as one in the same time\n", 2 * one / two);
}

} // namespace

int main(int argc, char *argv[])
{
    const std::vector<std::string> texts = textsOf(argc - 1, argv + 1);
    compare(texts);
    runSideBySide(texts);
    grow(texts);
    return 0;
}
