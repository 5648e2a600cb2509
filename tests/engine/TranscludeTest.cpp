// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Transclude.h"
#include "engine/Engine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

using namespace tomelet::engine;

namespace {

class Transclude : public testing::Test
{
protected:
    Transclude()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "transclude-XXXXXX").string();
        m_folder = mkdtemp(pattern.data());
    }
    ~Transclude() override { std::filesystem::remove_all(m_folder); }

    void write(const std::string &name, const std::string &text) const
    {
        const std::filesystem::path path = m_folder / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    [[nodiscard]] std::string result(const std::string &text, uint16_t format = FORMAT_HTML,
                                     stack *manifest = nullptr) const
    {
        d_string *source = d_string_new(text.c_str());
        mmd_transclude_source(source, m_folder.c_str(), (m_folder / "main.md").c_str(), format, nullptr, manifest);
        std::string all(source->str, source->currentStringLength);
        d_string_free(source, true);
        return all;
    }

    std::filesystem::path m_folder;
};

} // namespace

TEST_F(Transclude, PutsFilesInPlaceOfTheirMarkers)
{
    write("a.md", "A {{b.md}} a");
    write("b.md", "\xEF\xBB\xBFtitle: x\n\nB");
    EXPECT_EQ(result("1 {{a.md}} `{{b.md}}` {{a.md}}"), "1 A \nB a `\nB` A \nB a");
}

TEST_F(Transclude, LeavesWhatItCannotRead)
{
    write("TOC", "no");
    write("open.md", "O");
    const std::string text = "{{TOC}} {{missing}} {{}} {{open";
    EXPECT_EQ(result(text), text);
    const std::string longName = "{{" + std::string(1000, 'x') + "}} ";
    EXPECT_EQ(result(longName + "{{open.md}}"), longName + "O");
    EXPECT_EQ(result("{{ {{open.md}}"), "{{ O");
}

TEST_F(Transclude, StopsLoops)
{
    write("a.md", "a{{b.md}}");
    write("b.md", "b{{a.md}}");
    write("self.md", "s{{self.md}}");
    EXPECT_EQ(result("{{a.md}} {{self.md}} {{main.md}}"), "ab{{a.md}} s{{self.md}} {{main.md}}");
}

TEST_F(Transclude, TakesTheFormatsSuffix)
{
    write("a.html", "H");
    write("a.tex", "T");
    write("a.fodt", "F");
    EXPECT_EQ(result("{{a.*}}", FORMAT_EPUB) + result("{{a.*}}", FORMAT_MEMOIR) + result("{{a.*}}", FORMAT_ODT), "HTF");
    EXPECT_EQ(result("{{a.*}}", FORMAT_MMD), "{{a.*}}");
}

TEST_F(Transclude, MetadataSayWhereToLookAndStayAsTheyAre)
{
    write("x.md", "wrong");
    write("sub/x.md", "right");
    EXPECT_EQ(result("transclude base: sub\nk: {{x.md}}\n\n{{x.md}}"), "transclude base: sub\nk: {{x.md}}\n\nright");
}

TEST_F(Transclude, TellsWhatItRead)
{
    write("a.md", "a");
    stack *manifest = stack_new(0);
    static_cast<void>(result("{{a.md}}{{a.md}}", FORMAT_HTML, manifest));
    ASSERT_EQ(manifest->size, 1U);
    EXPECT_EQ(static_cast<const char *>(stack_peek(manifest)), (m_folder / "a.md").string());
    std::free(stack_pop(manifest));
    stack_free(manifest);
}

TEST(Metadata, AreFoundAndRead)
{
    d_string *source = d_string_new("Base Header Level: 2 \\\n  x\nOther: y\n\ntext");
    size_t end = 0;
    EXPECT_TRUE(mmd_d_string_has_metadata(source, &end));
    EXPECT_EQ(end, 36U);
    char *value = mmd_d_string_metavalue_for_key(source, "baseheaderlevel");
    EXPECT_STREQ(value, "2\nx");
    std::free(value);
    EXPECT_EQ(mmd_d_string_metavalue_for_key(source, "none"), nullptr);
    d_string_free(source, true);
}
