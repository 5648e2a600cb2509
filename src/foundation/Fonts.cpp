// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Fonts.h"

#include <fontconfig/fontconfig.h>

#include <memory>

namespace tomelet {

namespace {

using Pattern = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;
using FontSet = std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)>;

bool anyFontWith(const char *property, const QByteArray &value)
{
    const Pattern wanted(FcPatternCreate(), &FcPatternDestroy);
    FcPatternAddString(wanted.get(), property, reinterpret_cast<const FcChar8 *>(value.constData()));
    const FontSet found(FcFontList(nullptr, wanted.get(), nullptr), &FcFontSetDestroy);
    return found && found->nfont > 0;
}

} // namespace

bool fontIsInstalled(const QString &name)
{
    const QByteArray value = name.toUtf8();
    return !name.isEmpty() &&
           (anyFontWith(FC_FAMILY, value) || anyFontWith(FC_FULLNAME, value) || anyFontWith(FC_POSTSCRIPT_NAME, value));
}

QString systemFontFace()
{
    const Pattern wanted(FcNameParse(reinterpret_cast<const FcChar8 *>("sans-serif")), &FcPatternDestroy);
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const Pattern best(FcFontMatch(nullptr, wanted.get(), &result), &FcPatternDestroy);
    FcChar8 *family = nullptr;
    if (!best || FcPatternGetString(best.get(), FC_FAMILY, 0, &family) != FcResultMatch)
        return QStringLiteral("Sans Serif");
    return QString::fromUtf8(reinterpret_cast<const char *>(family));
}

} // namespace tomelet
