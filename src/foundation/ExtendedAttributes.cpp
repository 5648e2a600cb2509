// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/ExtendedAttributes.h"

#include <QFile>

#include <sys/xattr.h>

namespace tomelet {

static QByteArray attributeName(const QString &name)
{
    return "user." + name.toUtf8();
}

static std::optional<QByteArray> readAttribute(const char *path, const char *name)
{
    const ssize_t size = ::getxattr(path, name, nullptr, 0);
    if (size < 0) return std::nullopt;
    QByteArray value(size, Qt::Uninitialized);
    const ssize_t read = ::getxattr(path, name, value.data(), static_cast<size_t>(size));
    if (read < 0) return std::nullopt;
    value.truncate(read);
    return value;
}

std::optional<QByteArray> extendedAttribute(const QString &path, const QString &name)
{
    return readAttribute(QFile::encodeName(path).constData(), attributeName(name).constData());
}

bool setExtendedAttribute(const QString &path, const QString &name, const QByteArray &value)
{
    return ::setxattr(QFile::encodeName(path).constData(), attributeName(name).constData(), value.constData(),
                      static_cast<size_t>(value.size()), 0) == 0;
}

void copyExtendedAttributes(const QByteArray &encodedPath, int targetDescriptor)
{
    const ssize_t size = ::listxattr(encodedPath.constData(), nullptr, 0);
    if (size <= 0) return;
    QByteArray names(size, Qt::Uninitialized);
    const ssize_t read = ::listxattr(encodedPath.constData(), names.data(), static_cast<size_t>(size));
    if (read <= 0) return;
    names.truncate(read);
    for (const QByteArray &name : names.split('\0')) {
        if (!name.startsWith("user.")) continue;
        if (const auto value = readAttribute(encodedPath.constData(), name.constData()))
            ::fsetxattr(targetDescriptor, name.constData(), value->constData(), static_cast<size_t>(value->size()), 0);
    }
}

} // namespace tomelet
