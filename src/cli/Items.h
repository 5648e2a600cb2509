// SPDX-License-Identifier: GPL-3.0-or-later
// Items as they are named on the command line, and what every command needs before it works on them.
#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace tomelet::cli {

struct Invocation;

/// The full path of an item that is named by an absolute path, a path relative to the root, a normalised path or a
/// tomelet URL. A path that begins with "/": below the root as a text it is absolute; else, existing below the root,
/// normalised; else, existing on disk, absolute; else normalised. "/" alone and "" are the root.
[[nodiscard]] QString itemPath(const QString &argument);

/// Takes the call's root and answers for the whole process. Gives the status to end with when there is no root.
[[nodiscard]] std::optional<int> openNotebook(const Invocation &call);
/// The same for commands that work without a root as well.
void takeOptions(const Invocation &call);

/// A property's value: ISO dates become dates for the keys that hold dates; everything else stays.
[[nodiscard]] QVariant propertyFromText(const QString &key, const QVariant &value);

} // namespace tomelet::cli
