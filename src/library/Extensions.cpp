// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/Extensions.h"

#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"
#include "library/Root.h"

#include <QHash>

namespace tomelet {

static QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(u' ');
}

const QStringList &recognisedExtensions()
{
    static const QStringList list = words(
        "html htm pdf rtf doc docx xls xlsx ppt pptx webarchive pages keynote numbers zip txt tex h m pl pm t xml text "
        "log rb bat ly java js p cc el crash plist md markdown mdown rmd gif jpg jpeg jpe png psd bmp m4v m4a mp3 aiff "
        "mp4 mov css epub fountain eml webloc url php taskpaper ajax jquery ips ovpn bib org sh json csv opml fdx flac "
        "py yaml bike mmd mermaid");
    return list;
}

const QStringList &builtInPlainTextExtensions()
{
    static const QStringList list = words(
        "txt tex h m pl pm t xml text log rb bat ly java js p cc el crash plist md markdown mdown rmd css fountain php "
        "taskpaper ajax jquery ips ovpn bib org sh json py yaml mmd mermaid");
    return list;
}

const QStringList &markdownExtensions()
{
    static const QStringList list = words("md markdown text mdown rmd mmd mermaid");
    return list;
}

const QStringList &imageExtensions()
{
    static const QStringList list = words("gif jpg jpeg jpe png psd bmp tiff heif heic dng webp");
    return list;
}

const QStringList &packageExtensions()
{
    static const QStringList list = words("numbers key rtfd graffle app ooutline cardflow");
    return list;
}

QStringList customPlainTextExtensions()
{
    const auto bytes = readFile(miscFile(QStringLiteral("CustomPlainTextExtensions.txt")));
    if (!bytes) return {};
    QStringList list = QString::fromUtf8(*bytes).simplified().split(u' ', Qt::SkipEmptyParts);
    list.removeDuplicates();
    return list;
}

QStringList plainTextExtensions()
{
    return builtInPlainTextExtensions() + customPlainTextExtensions();
}

QString lowerExtension(const QString &path)
{
    return pathExtension(path).toLower();
}

bool hasMarkdownExtension(const QString &path)
{
    return markdownExtensions().contains(lowerExtension(path));
}

bool hasPlainTextExtension(const QString &path)
{
    const QString extension = lowerExtension(path);
    return builtInPlainTextExtensions().contains(extension) ||
           (!extension.isEmpty() && customPlainTextExtensions().contains(extension));
}

bool hasImageExtension(const QString &path)
{
    return imageExtensions().contains(lowerExtension(path));
}

bool hasPackageExtension(const QString &path)
{
    return packageExtensions().contains(lowerExtension(path));
}

namespace {

struct MediaType
{
    const char *extension;
    const char *type;
};

constexpr MediaType typesByExtension[] = {
    {"html", "text/html"},
    {"htm", "text/html"},
    {"pdf", "application/pdf"},
    {"webarchive", "application/octet-stream"},
    {"doc", "application/msword"},
    {"xls", "application/vnd.ms-excel"},
    {"ppt", "application/vnd.ms-powerpoint"},
    {"pps", "application/vnd.ms-powerpoint"},
    {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
    {"ppsx", "application/vnd.openxmlformats-officedocument.presentationml.slideshow"},
    {"gif", "image/gif"},
    {"jpg", "image/jpeg"},
    {"jpeg", "image/jpeg"},
    {"png", "image/png"},
    {"rtf", "application/rtf"},
    {"pages", "application/x-iwork-pages-sffpages"},
    {"numbers", "application/x-iwork-numbers-sffnumbers"},
    {"key", "application/x-iwork-keynote-sffkey"},
    {"zip", "application/zip"},
    {"mp4", "video/mp4"},
    {"mov", "video/quicktime"},
    {"m4v", "video/m4v"},
    {"m4a", "audio/mpeg"},
    {"mp3", "audio/mpeg"},
    {"aiff", "audio/mpeg"},
    {"flac", "audio/mpeg"},
    {"epub", "application/epub+zip"},
};

constexpr MediaType extensionsByType[] = {
    {"txt", "text/plain"},
    {"html", "text/html"},
    {"pdf", "application/pdf"},
    {"doc", "application/msword"},
    {"xls", "application/vnd.ms-excel"},
    {"ppt", "application/vnd.ms-powerpoint"},
    {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {"docx", "org.openxmlformats.wordprocessingml.document"},
    {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {"xlsx", "org.openxmlformats.spreadsheetml.sheet"},
    {"gif", "image/gif"},
    {"jpeg", "image/jpeg"},
    {"png", "image/png"},
    {"rtf", "application/rtf"},
    {"pages", "application/x-iwork-pages-sffpages"},
    {"numbers", "application/x-iwork-numbers-sffnumbers"},
    {"key", "application/x-iwork-keynote-sffkey"},
    {"zip", "application/zip"},
    {"mp4", "video/mp4"},
    {"mov", "video/quicktime"},
    {"mp4", "com.apple.m4a-audio"},
    {"m4v", "video/m4v"},
    {"mp3", "audio/mpeg"},
    {"epub", "application/epub+zip"},
};

} // namespace

QString tm_mimeTypeForExtension(const QString &extension)
{
    const QString lower = extension.toLower();
    for (const MediaType &row : typesByExtension)
        if (lower == QLatin1StringView(row.extension)) return QString::fromLatin1(row.type);
    if (plainTextExtensions().contains(lower)) return QStringLiteral("text/plain");
    return QStringLiteral("text/html");
}

QString tm_extensionForMimeType(const QString &type)
{
    const QString lower = type.toLower();
    for (const MediaType &row : extensionsByType)
        if (lower == QLatin1StringView(row.type)) return QString::fromLatin1(row.extension);
    return QStringLiteral("txt");
}

} // namespace tomelet
