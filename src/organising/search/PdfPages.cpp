// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/PdfPages.h"

#include <QElapsedTimer>
#include <QFile>

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

#include <memory>

namespace tomelet {

std::optional<int> pageOfPdfWith(const QString &path, const QString &term)
{
    static constexpr qint64 patience = 333; // milliseconds: somebody waits for the document
    poppler::set_debug_error_function([](const std::string &, void *) {}, nullptr);
    const std::unique_ptr<poppler::document> document(
        poppler::document::load_from_file(QFile::encodeName(path).toStdString()));
    if (!document || document->is_locked()) return {};
    const QByteArray utf8 = term.toUtf8();
    const poppler::ustring wanted = poppler::ustring::from_utf8(utf8.constData(), int(utf8.size()));
    QElapsedTimer clock;
    clock.start();
    for (int number = 0; number < document->pages() && clock.elapsed() < patience; ++number) {
        const std::unique_ptr<poppler::page> page(document->create_page(number));
        poppler::rectf place;
        if (page && page->search(wanted, place, poppler::page::search_from_top, poppler::case_insensitive))
            return number;
    }
    return {};
}

} // namespace tomelet
