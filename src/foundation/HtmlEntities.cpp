// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/HtmlEntities.h"

#include <libxml/HTMLparser.h>

namespace tomelet {

// The character of the reference between "&" and ";", 0 for none.
static char32_t characterOf(QStringView name)
{
    if (name.startsWith(u'#')) {
        const bool hex = name.size() > 1 && (name[1] == u'x' || name[1] == u'X');
        bool ok = false;
        const uint code = name.sliced(hex ? 2 : 1).toUInt(&ok, hex ? 16 : 10);
        const bool valid = ok && code > 0 && code <= 0x10ffff && !QChar::isSurrogate(code);
        return valid ? code : 0;
    }
    if (name == u"apos") return U'\'';
    const htmlEntityDesc *entity = htmlEntityLookup(reinterpret_cast<const xmlChar *>(name.toUtf8().constData()));
    return entity ? entity->value : 0;
}

QString withEntitiesResolved(const QString &text)
{
    static constexpr qsizetype longestName = 12;
    QString result;
    qsizetype from = 0;
    for (qsizetype mark = text.indexOf(u'&'); mark >= 0; mark = text.indexOf(u'&', mark + 1)) {
        const QStringView ahead = QStringView(text).sliced(mark, std::min(longestName, text.size() - mark));
        const qsizetype length = ahead.indexOf(u';');
        if (length < 2) continue;
        const qsizetype end = mark + length;
        const char32_t character = characterOf(ahead.sliced(1, length - 1));
        if (character == 0) continue;
        result.append(QStringView(text).sliced(from, mark - from));
        result.append(QStringView(QChar::fromUcs4(character)));
        from = end + 1;
        mark = end;
    }
    if (from == 0) return text;
    result.append(QStringView(text).sliced(from));
    return result;
}

} // namespace tomelet
