// SPDX-License-Identifier: GPL-3.0-or-later
// A notebook in a folder of its own, with settings, trash and state that no other test sees.
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

#include <gtest/gtest.h>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace tomelet::test {

class Notebook : public ::testing::Test
{
protected:
    Notebook();
    ~Notebook() override;

    /// The full path of a path below the root.
    [[nodiscard]] QString at(const QString &path) const { return root + path; }
    /// Writes a file, making its folders; gives its full path.
    QString write(const QString &path, const QByteArray &bytes = "text\n") const;
    [[nodiscard]] QByteArray read(const QString &path) const;
    [[nodiscard]] QVariantMap plist(const QString &path) const;
    QString makeBook(const QString &path) const;
    [[nodiscard]] bool exists(const QString &path) const;
    /// Names in a folder below the root, sorted.
    [[nodiscard]] QStringList names(const QString &path) const;

    QTemporaryDir world;
    QString root; ///< without a trailing "/"
    bool trashWorks = true;
};

} // namespace tomelet::test
