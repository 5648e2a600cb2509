// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/WebDAV/XMLBody.h"

#include "server/Core/Log.h"
#include "server/Core/Text.h"

#include <libxml/parser.h>

#include <climits>
#include <memory>

namespace tomelet::http {

namespace {

// Recover, no errors, no warnings, no blanks, no network, compact.
constexpr int parseOptions = 67937;

struct DocumentDeleter
{
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, DocumentDeleter>;

Document parseDocument(std::string_view body)
{
    static const bool ready = (xmlInitParser(), true); // once, before several threads parse
    if (!ready || body.empty() || body.size() > INT_MAX) return nullptr;
    return Document(xmlReadMemory(body.data(), static_cast<int>(body.size()), nullptr, nullptr, parseOptions));
}

bool isNamed(const xmlNode *node, const char *name)
{
    return node->type == XML_ELEMENT_NODE && xmlStrcmp(node->name, reinterpret_cast<const xmlChar *>(name)) == 0;
}

std::string nameOf(const xmlNode *node)
{
    return reinterpret_cast<const char *>(node->name);
}

const xmlNode *firstElement(const xmlNode *node)
{
    while (node && node->type != XML_ELEMENT_NODE) node = node->next;
    return node;
}

const xmlNode *childNamed(const xmlNode *parent, const char *name)
{
    for (const xmlNode *node = parent ? parent->children : nullptr; node; node = node->next)
        if (isNamed(node, name)) return node;
    return nullptr;
}

const xmlNode *rootNamed(const Document &document, const char *name)
{
    for (const xmlNode *node = document ? document->children : nullptr; node; node = node->next)
        if (isNamed(node, name)) return node;
    return nullptr;
}

std::string nameOfFirstChild(const xmlNode *parent)
{
    const xmlNode *const child = parent ? firstElement(parent->children) : nullptr;
    return child ? nameOf(child) : std::string();
}

std::string textOf(const xmlNode *parent)
{
    std::string text;
    for (const xmlNode *node = parent ? parent->children : nullptr; node; node = node->next)
        if ((node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) && node->content)
            text += reinterpret_cast<const char *>(node->content);
    return text;
}

unsigned propertyNamed(const xmlNode *node)
{
    static constexpr struct
    {
        const char *name;
        unsigned bit;
    } table[] = {
        {"resourcetype", ResourceType},
        {"creationdate", CreationDate},
        {"getlastmodified", LastModified},
        {"getcontentlength", ContentLength},
    };
    for (const auto &row : table)
        if (isNamed(node, row.name)) return row.bit;
    logLine("Unknown DAV property requested \"" + printable(nameOf(node)) + "\"");
    return 0;
}

} // namespace

unsigned selectedProperties(std::string_view body)
{
    const Document document = parseDocument(body);
    const xmlNode *const prop = childNamed(rootNamed(document, "propfind"), "prop");
    unsigned selected = 0;
    for (const xmlNode *node = prop ? prop->children : nullptr; node; node = node->next)
        if (node->type == XML_ELEMENT_NODE) selected |= propertyNamed(node);
    return selected == 0 ? AllProperties : selected;
}

std::optional<LockInfo> parseLockInfo(std::string_view body)
{
    const Document document = parseDocument(body);
    const xmlNode *const info = rootNamed(document, "lockinfo");
    if (!info) {
        logLine("Invalid DAV lock body: " + printable(body));
        return std::nullopt;
    }
    return LockInfo{nameOfFirstChild(childNamed(info, "lockscope")), nameOfFirstChild(childNamed(info, "locktype")),
                    textOf(childNamed(childNamed(info, "owner"), "href"))};
}

} // namespace tomelet::http
