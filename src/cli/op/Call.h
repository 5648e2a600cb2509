// SPDX-License-Identifier: GPL-3.0-or-later
// Calling a registered operation with arguments from a shell or a line of JSON.
#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace tomelet::cli {

struct Operation;

struct CallResult
{
    enum Kind { Ok, UnknownName, WrongArguments, Failure } kind = Ok;
    QString message;
    QVariant value;
    bool hasValue = true; ///< false for operations without a result
};

/// Calls the operation that fits the number of arguments; the receiver, if it has one, is the first of them.
/// `@FILE` and `-` are read for a shell's receivers alone.
[[nodiscard]] CallResult callOperation(const QString &name, QVariantList arguments, bool fromShell);

/// A tree of values in which texts that are ISO 8601 dates are dates.
[[nodiscard]] QVariant withIsoDates(const QVariant &value);

} // namespace tomelet::cli
