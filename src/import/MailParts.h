// SPDX-License-Identifier: GPL-3.0-or-later
// A mail taken apart: header, text, pictures and attached files. There is no full MIME parser: messages are cut with
// searches and a handful of patterns, so that half a message gives what it has.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tomelet {

/// A file of a part, written to the working folder.
struct MailFile
{
    QString path;
    QString name;      ///< as the mail calls it
    QString contentId; ///< of a picture that the HTML refers to; "" for none
};

/// What a message, or a part of several parts, comes to.
struct MailParts
{
    QStringList html;
    QStringList plain; ///< ignored where there is HTML
    QList<MailFile> images;
    QList<MailFile> attachments; ///< nested messages too
    bool passesOverFiles = false;
};

/// Cuts at the first empty line; without one everything is header.
struct MailMessage
{
    QString header; ///< decoded and unfolded
    QString body;
};
[[nodiscard]] MailMessage splitMessage(const QString &text);

/// What becomes of the files among the parts, nested messages included.
enum class MailFiles { Write, PassOver };
/// Reads the parts of a message. With `decoded`, the body's transfer encoding was undone before.
[[nodiscard]] MailParts partsOfMessage(const MailMessage &message, bool decoded, MailFiles files = MailFiles::Write);

} // namespace tomelet
