// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/OfficeText.h"

#include "foundation/TextCodec.h"
#include "library/Extensions.h"
#include "organising/search/PageText.h"

#include <QFile>
#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <memory>

namespace tomelet {

namespace {

constexpr qsizetype mostBytes = 32 << 20;
constexpr int mostEntries = 20000;

struct Format
{
    QStringList extensions;
    QStringList folders;      ///< where the texts lie in the archive
    QString name;             ///< their name, or how it ends when it begins with a dot
    QStringList textElements; ///< text stands in these alone; none: the files are pages
};

const QList<Format> &formats()
{
    static const auto words = [](const char *text) { return QString::fromLatin1(text).split(u' '); };
    static const QString xml = QStringLiteral(".xml");
    static const QList<Format> all{
        {words("odt ott ods ots odp otp odg"), {QString()}, QStringLiteral("content.xml"), words("p h")},
        {words("docx docm dotx"), words("word/"), xml, words("t")},
        {words("pptx pptm ppsx"), words("ppt/slides/ ppt/notesSlides/"), xml, words("t")},
        {words("xlsx xlsm xltx"), words("xl/"), QStringLiteral("sharedStrings.xml"), words("t")},
        {words("epub"), {}, {}, {}},
    };
    return all;
}

const Format *formatOf(const QString &extension)
{
    for (const Format &format : formats())
        if (format.extensions.contains(extension)) return &format;
    return nullptr;
}

bool isPage(const QString &entry)
{
    const QString extension = lowerExtension(entry);
    return extension == u"xhtml" || extension.startsWith(u"htm");
}

bool holdsText(const Format &format, const QString &entry)
{
    if (format.textElements.isEmpty()) return isPage(entry);
    const qsizetype name = entry.lastIndexOf(u'/') + 1;
    if (!format.folders.contains(entry.left(name))) return false;
    return format.name.startsWith(u'.') ? entry.endsWith(format.name) : entry.mid(name) == format.name;
}

// -- XML --------------------------------------------------------------------------------------------------------------

bool isOneOf(QStringView name, std::initializer_list<QStringView> names)
{
    return std::ranges::find(names, name) != names.end();
}

/// Elements are known by their local names: the formats use the same ones with prefixes of their own.
class XmlText
{
public:
    XmlText(const QByteArray &xml, const QStringList &textElements)
        : m_reader(xml)
        , m_textElements(textElements)
    {}

    QString read()
    {
        while (!m_reader.atEnd()) {
            switch (m_reader.readNext()) {
            case QXmlStreamReader::StartElement: enter(m_reader.name()); break;
            case QXmlStreamReader::EndElement: leave(m_reader.name()); break;
            case QXmlStreamReader::Characters:
                if (m_depthOfText > 0) m_text += m_reader.text();
                break;
            default: break;
            }
        }
        return m_text;
    }

private:
    void enter(QStringView name)
    {
        // Codes of fields, what was deleted, and how to pronounce it.
        if (isOneOf(name, {u"instrText", u"delText", u"rPh"})) return m_reader.skipCurrentElement();
        if (m_textElements.contains(name)) ++m_depthOfText;
        else if (isOneOf(name, {u"tab", u"s", u"br", u"cr", u"line-break"})) m_text += u' ';
    }
    void leave(QStringView name)
    {
        if (m_textElements.contains(name)) --m_depthOfText;
        if (isOneOf(name, {u"p", u"h", u"si"})) m_text += u'\n';
    }

    QXmlStreamReader m_reader;
    const QStringList &m_textElements;
    QString m_text;
    int m_depthOfText = 0;
};

QString textOfEntry(const Format &format, const QByteArray &bytes)
{
    if (!format.textElements.isEmpty()) return XmlText(bytes, format.textElements).read();
    return textOfPage(decodeText(bytes).text) + u'\n';
}

// -- the archive ------------------------------------------------------------------------------------------------------

// Names that the locale cannot write are a warning.
bool goesOn(int result)
{
    return result == ARCHIVE_OK || result == ARCHIVE_WARN;
}

// What comes before a fault is kept.
QByteArray bytesOfEntry(archive *file, qsizetype most)
{
    QByteArray bytes;
    std::array<char, 65536> buffer{};
    while (bytes.size() < most) {
        const la_ssize_t count = archive_read_data(file, buffer.data(), buffer.size());
        if (count <= 0) break;
        bytes.append(buffer.data(), count);
    }
    return bytes;
}

} // namespace

bool isOfficeDocument(const QString &extension)
{
    return formatOf(extension) != nullptr;
}

QString textOfOfficeDocument(const QString &path)
{
    const Format *format = formatOf(lowerExtension(path));
    const std::unique_ptr<archive, decltype(&archive_read_free)> file(archive_read_new(), archive_read_free);
    // By the archive's own directory, so that what is passed over need not be unpacked, however large it would be.
    archive_read_support_format_zip_seekable(file.get());
    if (!format || archive_read_open_filename(file.get(), QFile::encodeName(path).constData(), 65536) != ARCHIVE_OK)
        return {};
    QString text;
    qsizetype unpacked = 0;
    archive_entry *entry = nullptr;
    for (int i = 0; i < mostEntries && goesOn(archive_read_next_header(file.get(), &entry)); ++i) {
        const char *name = archive_entry_pathname_utf8(entry);
        if (!name || !holdsText(*format, QString::fromUtf8(name))) continue;
        const QByteArray bytes = bytesOfEntry(file.get(), mostBytes - unpacked);
        unpacked += bytes.size();
        text += textOfEntry(*format, bytes);
        if (unpacked >= mostBytes) break;
    }
    return text;
}

} // namespace tomelet
