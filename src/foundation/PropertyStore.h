// SPDX-License-Identifier: GPL-3.0-or-later
// Property lists as stores: read whole, changed in memory, written whole through the safe writer.
// A missing store and one that cannot be read both read as empty; the second is set aside before anything is
// written in its place.
#pragma once

#include "foundation/SafeWriter.h"

#include <QString>
#include <QVariant>

#include <functional>

namespace tomelet {

/// The dictionary in the file; empty when it is missing, cannot be read, or holds no dictionary.
[[nodiscard]] QVariantMap readDictionary(const QString &path);
/// The array in the file; empty in the same cases.
[[nodiscard]] QVariantList readArray(const QString &path);
/// The texts of an array; entries of other types are left out.
[[nodiscard]] QStringList readStringArray(const QString &path);

/// Replaces the store by the value, a QVariantMap or QVariantList, as XML. What stood there and does not read as a
/// value of the same type is set aside first. False when it could not be written; the old store then stands.
bool writeStore(const QString &path, const QVariant &value);

/// Reads the dictionary, lets `change` alter it and writes it when that returns true; all this once more when somebody
/// else wrote it meanwhile. True when nothing was to be written or the write succeeded.
bool changeDictionary(const QString &path, const std::function<bool(QVariantMap &)> &change);

/// Changes of many dictionaries, each read at once and written with others (see FileBatch).
class StoreBatch
{
public:
    /// The same as changeDictionary; `change` is called at once and kept until flush(). A store that cannot be written
    /// is logged and stands as it was.
    void change(const QString &path, std::function<bool(QVariantMap &)> change);
    void flush() { m_files.flush(); }

private:
    FileBatch m_files;
};

} // namespace tomelet
