// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Discount.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

extern "C" {
#include <mkdio.h>
}

namespace tomelet {

namespace {

struct CleanUp
{
    void operator()(MMIOT *document) const { mkd_cleanup(document); }
};
using Document = std::unique_ptr<MMIOT, CleanUp>;

constexpr mkd_flag_t engineFlags = MKD_TOC | MKD_EXTRA_FOOTNOTE | MKD_FENCEDCODE | MKD_LATEX | MKD_GITHUBTAGS |
                                   MKD_AUTOLINK | MKD_EXPLICITLIST | MKD_DLEXTRA | MKD_IDANCHOR | MKD_NOSTYLE;

QByteArray titleBlockOf(MMIOT *document)
{
    const QByteArray title = mkd_doc_title(document);
    if (title.isEmpty()) return {};
    const QByteArray author = mkd_doc_author(document);
    const QByteArray date = mkd_doc_date(document);
    QByteArray block = "<div id=\"header\"><h1 class=\"title\">" + title + "</h1>";
    if (!author.isEmpty()) block += "\n<h2 class=\"author\">" + author + "</h2>";
    if (!date.isEmpty()) block += "\n<h3 class=\"date\">" + date + "</h3>";
    return block + "</div>\n<hr class=\"invisible-pagebreak\">\n";
}

QByteArray generated(MMIOT *document)
{
    char *buffer = nullptr;
    size_t size = 0;
    FILE *stream = ::open_memstream(&buffer, &size);
    if (!stream) return {};
    mkd_generatehtml(document, stream);
    std::fclose(stream);
    const QByteArray html(buffer, qsizetype(size));
    std::free(buffer);
    return html;
}

} // namespace

QString discountToHtml(const QString &text, bool titleBlock, bool smartyPants)
{
    // The library's tables are made at the first use, which must not happen twice at once.
    static std::once_flag prepared;
    std::call_once(prepared, [] {
        mkd_initialize();
        mkd_with_html5_tags();
    });
    const mkd_flag_t flags = engineFlags | (smartyPants ? 0 : MKD_NOPANTS);
    const QByteArray source = text.toUtf8();
    const Document document(mkd_string(source.constData(), int(source.size()), flags));
    if (!document || !mkd_compile(document.get(), flags)) return {};
    const QByteArray header = titleBlock ? titleBlockOf(document.get()) : QByteArray();
    return QString::fromUtf8(header + generated(document.get()));
}

} // namespace tomelet
