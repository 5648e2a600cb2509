// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace tomelet {

/// The value of a mail's date field (RFC 5322, with or without its weekday) as people read it: long date, short time,
/// in the current locale and time zone. "" for what is no date.
[[nodiscard]] QString readableMailDate(const QString &value);

} // namespace tomelet
