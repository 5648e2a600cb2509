// SPDX-License-Identifier: GPL-3.0-or-later
//
// PROPFIND: the properties of an item and, at depth 1, of what lies directly in it.
#include "server/WebDAV/DAVRequest.h"

#include "server/Core/FileHandle.h"
#include "server/Core/HTTPDate.h"
#include "server/Core/Log.h"
#include "server/Core/TemporaryItem.h"
#include "server/Core/Text.h"
#include "server/WebDAV/XMLBody.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>

namespace tomelet::http {

namespace {

using Attributes = struct statx;

// Links are followed; one that leads nowhere is told of by itself.
bool readAttributes(int folder, const char *name, Attributes &attributes)
{
    const unsigned wanted = STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_BTIME;
    return statx(folder, name, AT_STATX_DONT_SYNC, wanted, &attributes) == 0 ||
           statx(folder, name, AT_STATX_DONT_SYNC | AT_SYMLINK_NOFOLLOW, wanted, &attributes) == 0;
}

void appendProperties(std::string &body, const Attributes &attributes, unsigned selected)
{
    const bool folder = S_ISDIR(attributes.stx_mode);
    if (selected & ResourceType)
        body += folder ? "<D:resourcetype><D:collection/></D:resourcetype>" : "<D:resourcetype/>";
    if ((selected & CreationDate) && (attributes.stx_mask & STATX_BTIME))
        body.append("<D:creationdate>").append(creationDate(attributes.stx_btime.tv_sec)).append("</D:creationdate>");
    if ((selected & LastModified) && (attributes.stx_mask & STATX_MTIME))
        body.append("<D:getlastmodified>")
            .append(modificationDate(attributes.stx_mtime.tv_sec))
            .append("</D:getlastmodified>");
    if ((selected & ContentLength) && !folder)
        body.append("<D:getcontentlength>").append(std::to_string(attributes.stx_size)).append("</D:getcontentlength>");
}

void appendEntry(std::string &body, const std::string &resource, const Attributes &attributes, unsigned selected)
{
    if (!isValidUTF8(resource)) return;
    body.append("<D:response><D:href>").append(percentEscaped(resource)).append("</D:href><D:propstat><D:prop>");
    appendProperties(body, attributes, selected);
    body += "</D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>\n";
}

struct FolderCloser
{
    void operator()(DIR *folder) const { closedir(folder); }
};

void appendChildren(std::string &body, const std::string &path, const std::string &prefix, unsigned selected)
{
    const std::unique_ptr<DIR, FolderCloser> folder(opendir(path.c_str()));
    if (!folder) return;
    while (const dirent *const entry = readdir(folder.get())) {
        const std::string name = entry->d_name;
        Attributes attributes{};
        if (name == "." || name == ".." || isTemporaryName(name)) continue;
        if (readAttributes(dirfd(folder.get()), entry->d_name, attributes))
            appendEntry(body, prefix + name, attributes, selected);
    }
}

} // namespace

OptionalDAVReply replyToPROPFIND(const DAVRequest &request)
{
    const std::string depth = request.headers.value("Depth");
    if (depth != "0" && depth != "1") {
        logLine("Unsupported DAV depth \"" + printable(depth) + "\"");
        return std::nullopt;
    }
    Attributes attributes{};
    if (!readAttributes(AT_FDCWD, request.path.c_str(), attributes)) return std::nullopt;
    const unsigned selected = selectedProperties(request.bodyData);
    const bool listsFolder = depth == "1" && S_ISDIR(attributes.stx_mode);
    std::string resource = "/" + request.resourcePath;
    if (listsFolder && !resource.ends_with('/')) resource += '/';

    DAVReply reply;
    reply.status = 207;
    reply.headers.set("Content-Type", xmlContentType);
    reply.data = std::string(xmlDeclaration) + "<D:multistatus xmlns:D=\"DAV:\">\n";
    appendEntry(reply.data, resource, attributes, selected);
    if (listsFolder) appendChildren(reply.data, request.path, resource, selected);
    reply.data += "</D:multistatus>";
    return reply;
}

} // namespace tomelet::http
