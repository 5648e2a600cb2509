// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/FontFaces.h"

#include "foundation/Resources.h"

#include <QUrl>

#include <iterator>

namespace tomelet {

namespace {

// Faces with four files; the extension is "otf" where the name holds that of a family without TrueType files.
QStringList familyFiles(const QString &face)
{
    static const QStringList regular{QStringLiteral("AurulentSans-Regular"), QStringLiteral("LiberationMono-Regular"),
                                     QStringLiteral("Merriweather-Regular"), QStringLiteral("Montserrat-Regular"),
                                     QStringLiteral("OpenSans-Regular"),     QStringLiteral("Nunito-Regular"),
                                     QStringLiteral("Sarabun-Regular"),      QStringLiteral("Vollkorn-Regular")};
    static const QStringList light{QStringLiteral("Merriweather-Light"), QStringLiteral("Montserrat-Light"),
                                   QStringLiteral("OpenSans-Light"), QStringLiteral("Nunito-Light")};
    const auto files = [](const QString &family, const QString &extension,
                          std::initializer_list<const char *> weights) {
        QStringList names;
        for (const char *weight : weights) names << family + u'-' + QLatin1StringView(weight) + u'.' + extension;
        return names;
    };
    const bool openType = face.contains(u"Montserrat") || face.contains(u"AurulentSans");
    const QString extension = openType ? QStringLiteral("otf") : QStringLiteral("ttf");
    const QString family = face.section(u'-', 0, 0);
    if (regular.contains(face)) return files(family, extension, {"Regular", "Bold", "Italic", "BoldItalic"});
    if (light.contains(face)) return files(family, extension, {"Light", "Regular", "LightItalic", "Italic"});
    if (face == u"Muli")
        return {QStringLiteral("Muli.ttf"), QStringLiteral("Muli Bold.ttf"), QStringLiteral("Muli Italic.ttf"),
                QStringLiteral("Muli Bold Italic.ttf")};
    if (face == u"Muli Light")
        return {QStringLiteral("Muli Light.ttf"), QStringLiteral("Muli.ttf"), QStringLiteral("Muli Light Italic.ttf"),
                QStringLiteral("Muli Italic.ttf")};
    if (face.startsWith(u"CMUSerif"))
        return {QStringLiteral("cmunrm.ttf"), QStringLiteral("cmunbx.ttf"), QStringLiteral("cmunti.ttf"),
                QStringLiteral("cmunbi.ttf")};
    return {};
}

// Faces with one file, in the order in which their beginnings are tried; "*" is the face itself.
QString singleFile(const QString &face)
{
    static constexpr std::pair<const char *, const char *> table[] = {
        {"AurulentSans-", "AurulentSans-Regular.otf"},
        {"Aurulent Sans Mono", "AurulentSansMono-Regular.otf"},
        {"GentiumPlus", "GentiumPlus-R.ttf"},
        {"Inconsolata", "Inconsolata.otf"},
        {"LiberationMono-", "LiberationMono-Regular.ttf"},
        {"Lexend", "*.ttf"},
        {"MonospaceTypewriter", "MonospaceTypewriter.ttf"},
        {"Merriweather", "*.otf"},
        {"Montserrat", "*.otf"},
        {"OpenSans", "*.ttf"},
        {"Vollkorn", "*.ttf"},
        {"Muli-BoldItalic", "Muli Bold Italic.ttf"},
        {"Muli-Bold", "Muli Bold.ttf"},
        {"Muli-Italic", "Muli Italic.ttf"},
        {"Muli-LightItalic", "Muli Light Italic.ttf"},
        {"Muli-Light", "Muli Light.ttf"},
        {"Muli-Regular", "Muli.ttf"},
        {"Muli", "Muli.ttf"},
        {"OldTypefaces", "OldTypefaces.ttf"},
        {"SourceCodePro-", "SourceCodePro-Regular.ttf"},
        {"SourceSansPro-", "SourceSansPro-Regular.otf"},
        {"TypewriterScribbled", "TypewriterScribbled.ttf"},
        {"TypeWritersSubstitute", "TypeWritersSubstitute-Oblique.ttf"},
        {"TypeWritersSubstitute-Black", "TypeWritersSubstitute-Black.ttf"},
        {"BitstreamVeraSans-", "Vera.ttf"},
        {"BitstreamVeraSansMono-", "VeraMono.ttf"},
        {"BitstreamVeraSerif-", "VeraSe.ttf"},
    };
    for (const auto &[beginning, file] : table)
        if (face.startsWith(QLatin1StringView(beginning))) return QString::fromLatin1(file).replace(u'*', face);
    return {};
}

QString familyRules(const QString &face, const QString &base, const QStringList &files)
{
    static constexpr const char *styles[] = {"normal; font-weight: normal", "normal; font-weight: bold",
                                             "italic; font-weight: normal", "italic; font-weight: bold"};
    QStringList rules;
    for (size_t i = 0; i < std::size(styles); ++i)
        rules << QStringLiteral("@font-face {\tfont-family: ") + face + QStringLiteral(";\tfont-style: ") +
                     QLatin1StringView(styles[i]) + QStringLiteral(";\tsrc:url(\"") + base + u'/' +
                     files[qsizetype(i)] + QStringLiteral("\");\t}");
    return rules.join(u'\n');
}

} // namespace

QStringList tm_fontsToIncludeForFace(const QString &face, bool forEpub)
{
    const QString base =
        forEpub ? QStringLiteral("../fonts")
                : QString::fromLatin1(QUrl::fromLocalFile(resourcePath(QStringLiteral("fonts"))).toEncoded());
    if (const QStringList files = familyFiles(face); !files.isEmpty())
        return QStringList(familyRules(face, base, files)) + files;
    const QString file = singleFile(face);
    if (file.isEmpty()) return {};
    return {QStringLiteral("@font-face {\n\tfont-family: ") + face +
                QStringLiteral(";\nfont-style: normal;\nfont-weight: normal;\nsrc:url(\"") + base + u'/' + file +
                QStringLiteral("\");\n}\n"),
            file};
}

} // namespace tomelet
