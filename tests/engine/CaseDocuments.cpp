// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the documents in cases/: prose with examples of Markdown and the exact HTML that it becomes. Each
// section of a document is a test, so that one runs alone: engine_test --gtest_filter='Cases.emphasis/*'. An
// example looks like this:
//
//     >>> flags
//     Markdown
//     <<<
//     HTML
//     ===
//
// The flags are names as of `tomelet convert`; without any the extensions are the application's.
// "language=de" sets the language. The last newline of the Markdown is left out with the flag "no-newline",
// and "\0" with "nul" is that byte. With TOMELET_ACCEPT=1 in the environment the documents are rewritten with
// what the engine gives: look at the difference.
#include "engine/Engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using namespace tomelet::engine;

namespace {

const std::map<std::string, uint32_t> flagBits = {{"compatibility", EXT_COMPATIBILITY},
                                                  {"complete", EXT_COMPLETE},
                                                  {"snippet", EXT_SNIPPET},
                                                  {"smart", EXT_SMART},
                                                  {"notes", EXT_NOTES},
                                                  {"no-labels", EXT_NO_LABELS},
                                                  {"no-metadata", EXT_NO_METADATA},
                                                  {"critic", EXT_CRITIC},
                                                  {"accept", EXT_CRITIC_ACCEPT},
                                                  {"reject", EXT_CRITIC_REJECT}};
const std::map<std::string, uint16_t> languages = {{"language=es", LANG_ES}, {"language=de", LANG_DE},
                                                   {"language=fr", LANG_FR}, {"language=nl", LANG_NL},
                                                   {"language=sv", LANG_SV}, {"language=he", LANG_HE}};

struct Example
{
    size_t line;
    std::vector<std::string> flags;
    std::string input;
    std::string output;

    [[nodiscard]] bool has(const std::string &flag) const
    {
        return std::find(flags.begin(), flags.end(), flag) != flags.end();
    }
};

struct Section
{
    std::string name;
    std::vector<Example> examples;
};

std::vector<std::string> wordsOf(const std::string &line)
{
    std::istringstream words(line);
    std::vector<std::string> all;
    for (std::string word; words >> word;) all.push_back(word);
    return all;
}

std::string testName(const std::string &title)
{
    std::string name;
    for (const char c : title) name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

std::vector<Section> readDocument(const std::filesystem::path &path)
{
    std::ifstream file(path);
    std::vector<Section> sections;
    std::string *part = nullptr;
    bool inOutput = false;
    size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (!part && line.starts_with("## ")) sections.push_back({testName(line.substr(3)), {}});
        else if (!part && line.starts_with(">>>")) {
            sections.back().examples.push_back({number, wordsOf(line.substr(3)), "", ""});
            part = &sections.back().examples.back().input;
            inOutput = false;
        } else if (part && line == "<<<") {
            part = &sections.back().examples.back().output;
            inOutput = true;
        } else if (part && inOutput && line == "===") part = nullptr;
        else if (part) *part += line + '\n';
    }
    return sections;
}

std::string sourceOf(const Example &example)
{
    std::string source = example.input;
    if (example.has("no-newline")) source.pop_back();
    if (example.has("nul"))
        for (size_t at; (at = source.find("\\0")) != std::string::npos;) source.replace(at, 2, 1, '\0');
    return source;
}

std::string convert(const Example &example)
{
    uint32_t extensions = 0;
    uint16_t language = LANG_EN;
    for (const std::string &flag : example.flags) {
        if (flagBits.contains(flag)) extensions |= flagBits.at(flag);
        if (languages.contains(flag)) language = languages.at(flag);
    }
    if (extensions == 0) extensions = EXT_TRANSCLUDE | EXT_CRITIC | EXT_NOTES;
    const std::string text = sourceOf(example);
    d_string *source = d_string_new("");
    d_string_append_c_array(source, text.data(), text.size());
    d_string *html = mmd_d_string_convert(source, extensions, FORMAT_HTML, language, "");
    std::string result(html->str, html->currentStringLength);
    for (size_t at; (at = result.find('\0')) != std::string::npos;) result.replace(at, 1, "\\0");
    d_string_free(html, true);
    d_string_free(source, true);
    return result;
}

class SectionTest : public testing::Test
{
public:
    SectionTest(std::string file, Section section)
        : m_file(std::move(file))
        , m_section(std::move(section))
    {}
    void TestBody() override
    {
        ASSERT_FALSE(m_section.examples.empty());
        for (const Example &example : m_section.examples)
            EXPECT_EQ(convert(example), example.output) << m_file << ":" << example.line << "\n" << example.input;
    }

private:
    std::string m_file;
    Section m_section;
};

std::string rewritten(const std::filesystem::path &path)
{
    std::vector<Example> examples;
    for (const Section &section : readDocument(path))
        examples.insert(examples.end(), section.examples.begin(), section.examples.end());
    std::ifstream file(path);
    std::string text;
    bool copying = true;
    size_t next = 0;
    for (std::string line; std::getline(file, line);) {
        if (!copying && line == "===") copying = true;
        if (copying) text += line + '\n';
        if (line != "<<<") continue;
        text += convert(examples[next++]);
        copying = false;
    }
    return text;
}

std::vector<std::filesystem::path> documents()
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(TOMELET_SOURCE_DIR "/tests/engine/cases"))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool registerAll()
{
    for (const auto &path : documents()) {
        if (std::getenv("TOMELET_ACCEPT")) {
            const std::string text = rewritten(path);
            std::ofstream(path) << text;
        }
        for (const Section &section : readDocument(path)) {
            const std::string file = path.filename().string();
            testing::RegisterTest(("Cases." + path.stem().string()).c_str(), section.name.c_str(), nullptr, nullptr,
                                  __FILE__, __LINE__,
                                  [file, section]() -> testing::Test * { return new SectionTest(file, section); });
        }
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    registerAll();
    return RUN_ALL_TESTS();
}
