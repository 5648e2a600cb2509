// SPDX-License-Identifier: GPL-3.0-or-later
// The operations on what organises the library, one line each.
#include "cli/op/Registry.h"

#include "organising/DocumentList.h"

namespace tomelet::cli {

void addOrganisingOperations(Registry &add)
{
    add.path("getDocumentsInFolder", "book", [](const QString &book) {
        TMLTDocumentListViewController list;
        list.setSource({book, 0, {}});
        list.getDocumentsInFolder();
        return QVariantList(list.documentsList.begin(), list.documentsList.end());
    });
}

} // namespace tomelet::cli
