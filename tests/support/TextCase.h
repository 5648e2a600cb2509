// SPDX-License-Identifier: GPL-3.0-or-later
// A text and what is to become of it, for tests that go through tables.
#pragma once

#include <QString>

namespace tomelet::test {

struct Case
{
    const char *name;
    QString text, wanted;
};

} // namespace tomelet::test
