// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/MarkdownToHtml.h"

#include "conversion/CriticMarkup.h"
#include "conversion/Patterns.h"
#include "engine/Engine.h"
#include "engine/Transclude.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"

#include <QFile>

#include <cstdlib>
#include <memory>

namespace tomelet {

namespace {

using namespace engine;

struct FreeString
{
    void operator()(d_string *string) const { d_string_free(string, true); }
};
using EngineString = std::unique_ptr<d_string, FreeString>;

EngineString engineString(const QByteArray &bytes)
{
    EngineString string(d_string_new(""));
    d_string_append_c_array(string.get(), bytes.constData(), size_t(bytes.size()));
    return string;
}

QByteArray metadataValue(d_string *source, const char *key)
{
    const std::unique_ptr<char, decltype(&std::free)> value(mmd_d_string_metavalue_for_key(source, key), &std::free);
    return QByteArray(value.get());
}

// What the metadata wants in front of and behind every page of the document.
void insertHeaderAndFooter(d_string *source)
{
    size_t end = 0;
    if (!mmd_d_string_has_metadata(source, &end)) return;
    const QByteArray header = metadataValue(source, "mmdheader");
    const QByteArray footer = metadataValue(source, "mmdfooter");
    if (!header.isEmpty()) {
        const QByteArray inserted = "\n\n" + header;
        d_string_insert_c_array(source, end, inserted.constData(), size_t(inserted.size()));
    }
    if (footer.isEmpty()) return;
    d_string_append(source, "\n\n");
    d_string_append(source, footer.constData());
}

QString textOf(const d_string *string)
{
    return QString::fromUtf8(string->str, qsizetype(string->currentStringLength));
}

} // namespace

QString tm_ownMarkdownWithPath(const QString &text, const QString &path)
{
    EngineString source = engineString(text.toUtf8());
    insertHeaderAndFooter(source.get());
    const bool isFile = itemExists(path);
    const QByteArray folder = isFile ? QFile::encodeName(parentPath(path)) : QByteArray();
    if (isFile)
        mmd_transclude_source(source.get(), folder.constData(), QFile::encodeName(path).constData(), FORMAT_HTML,
                              nullptr, nullptr);
    if (settings().integer(QStringLiteral("showCriticMarkup")) == 0)
        source = engineString(acceptCriticMarkup(textOf(source.get())).toUtf8());

    uint32_t extensions = EXT_NOTES | EXT_CRITIC | EXT_TRANSCLUDE;
    if (settings().boolean(QStringLiteral("useSmartyPants"))) extensions |= EXT_SMART;
    const EngineString html(mmd_d_string_convert(source.get(), extensions, FORMAT_HTML, LANG_EN, folder.constData()));
    QString fragment = html ? textOf(html.get()) : QString();
    fragment = regexSweep(fragment, QStringLiteral("<div class=\"TOC\">\n\n<ul>\n</ul>\n</div>"), {});
    return fragment.replace(QStringLiteral("<div class=\"TOC\">"), QStringLiteral("<div id=\"TOC\" class=\"TOC\">"));
}

} // namespace tomelet
