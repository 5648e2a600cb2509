// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/urls/PageFetcher.h"

#include "foundation/Localization.h"
#include "library/PathForms.h"

#include <QNetworkReply>
#include <QTimer>

namespace tomelet {

namespace {

bool isWebAddress(const QUrl &address)
{
    const QString scheme = address.scheme().toLower();
    return (scheme == u"http" || scheme == u"https") && !address.host().isEmpty();
}

QNetworkRequest requestFor(const QUrl &address, const FetchLimits &limits)
{
    static constexpr int redirections = 10;
    QNetworkRequest request(address);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Tomelet/1.0"));
    // From https to http there is no way back, and no way to another scheme at all.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(redirections);
    request.setTransferTimeout(int(limits.silence.count()));
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        request.setAttribute(attribute, QNetworkRequest::Manual);
    return request;
}

// "attachment; filename=\"A b.pdf\"" or, by RFC 6266, "filename*=UTF-8''A%20b.pdf", which goes first.
QString nameInDisposition(const QString &header)
{
    static const QString encoded = QStringLiteral("filename*=");
    static const QString plain = QStringLiteral("filename=");
    if (const qsizetype at = header.indexOf(encoded, 0, Qt::CaseInsensitive); at >= 0)
        return percentDecoded(header.mid(at + encoded.size()).section(u';', 0, 0).section(QStringLiteral("''"), 1));
    const qsizetype at = header.indexOf(plain, 0, Qt::CaseInsensitive);
    if (at < 0) return {};
    const QString value = header.mid(at + plain.size()).trimmed();
    return value.startsWith(u'"') ? value.section(u'"', 1, 1) : value.section(u';', 0, 0).trimmed();
}

void readHeaders(const QNetworkReply &reply, FetchedPage &page)
{
    static const QString charset = QStringLiteral("charset=");
    const QString type = reply.header(QNetworkRequest::ContentTypeHeader).toString();
    page.mediaType = type.section(u';', 0, 0).trimmed().toLower();
    if (const qsizetype at = type.indexOf(charset, 0, Qt::CaseInsensitive); at >= 0)
        page.charset = type.mid(at + charset.size()).section(u';', 0, 0).remove(u'"').trimmed();
    page.suggestedName = nameInDisposition(QString::fromUtf8(reply.rawHeader("Content-Disposition")));
    page.address = reply.url();
}

/// One fetch; the reply owns it.
class Transfer final : public QObject
{
public:
    Transfer(QNetworkReply *reply, const FetchLimits &limits, UrlActionShell::Fetched done)
        : QObject(reply)
        , m_reply(*reply)
        , m_limit(limits.bytes)
        , m_done(std::move(done))
    {
        connect(reply, &QNetworkReply::readyRead, this, &Transfer::read);
        connect(reply, &QNetworkReply::finished, this, &Transfer::finish);
        QTimer::singleShot(limits.whole, this, [this] { giveUp(localized(TOMELET_TEXT("it takes too long"))); });
    }

private:
    void read()
    {
        m_page.body += m_reply.read(m_limit + 1 - m_page.body.size());
        if (m_page.body.size() <= m_limit) return;
        giveUp(localized(TOMELET_TEXT("more than %1 MB")).arg(m_limit / (1024 * 1024)));
    }
    void giveUp(const QString &why)
    {
        m_page.error = why;
        m_reply.abort();
    }
    void finish()
    {
        if (m_page.error.isEmpty() && m_reply.error() == QNetworkReply::NoError) read();
        if (m_page.error.isEmpty() && m_reply.error() != QNetworkReply::NoError)
            m_page.error = m_reply.error() == QNetworkReply::OperationCanceledError
                               ? localized(TOMELET_TEXT("the server does not answer"))
                               : m_reply.errorString();
        readHeaders(m_reply, m_page);
        if (!m_page.error.isEmpty()) m_page.error = m_page.address.toString() + QStringLiteral(": ") + m_page.error;
        m_reply.deleteLater();
        m_done(m_page);
    }

    QNetworkReply &m_reply;
    qint64 m_limit;
    FetchedPage m_page;
    UrlActionShell::Fetched m_done;
};

} // namespace

PageFetcher::PageFetcher(FetchLimits limits)
    : m_limits(limits)
{}

void PageFetcher::fetch(const QUrl &address, UrlActionShell::Fetched done)
{
    if (!isWebAddress(address)) {
        FetchedPage page;
        page.error = localized(TOMELET_TEXT("%1 is no address in the web")).arg(address.toString());
        QTimer::singleShot(0, &m_network, [page, done = std::move(done)] { done(page); });
        return;
    }
    new Transfer(m_network.get(requestFor(address, m_limits)), m_limits, std::move(done));
}

} // namespace tomelet
