// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/HTTPConnection.h"
#include "server/Core/TemporaryItem.h"

#include <memory>
#include <string>
#include <variant>

namespace tomelet::http {

/// A small WebDAV server (RFC 4918, class 1) over the root folder. Every file is served as it is, hidden ones
/// included; only what is still being uploaded is not there yet.
///
/// Departs from the RFC where clients of the notebook rely on it: MKCOL answers 200; COPY, MOVE and PROPFIND
/// answer 404 for what they refuse (an existing target, a depth other than told); locks are given and not
/// kept.
class DAVConnection : public HTTPConnection
{
public:
    using HTTPConnection::HTTPConnection;

    /// Larger bodies go to a file.
    static constexpr std::uint64_t maxBodyInMemory = 1048576;

protected:
    bool supportsMethod(const std::string &method, const std::string &path) override;
    bool expectsRequestBodyFromMethod(const std::string &method, const std::string &path) override;
    void prepareForBodyWithSize(std::uint64_t size) override;
    void processBodyData(std::string_view data) override;
    void finishResponse() override;
    std::string filePathForURI(const std::string &uri, bool allowDirectory = false) override;
    std::shared_ptr<HTTPResponse> httpResponseForMethod(const std::string &method, const std::string &uri) override;
    bool mayTakeLong(const std::string &method) override;

private:
    std::shared_ptr<HTTPResponse> responseToGET(const std::string &uri);
    std::shared_ptr<HTTPResponse> responseToPUT(const std::string &path);
    std::shared_ptr<HTTPResponse> responseToDAVMethod(const std::string &method, const std::string &path);

    using BodyFile = std::unique_ptr<TemporaryItem>;
    std::variant<std::monostate, std::string, BodyFile> m_requestContentBody;
};

} // namespace tomelet::http
