// SPDX-License-Identifier: GPL-3.0-or-later
// A text and what is to become of it, for tests that go through tables.
#pragma once

#include <QString>

#include <gtest/gtest.h>

#include <initializer_list>

namespace tomelet::test {

struct Case
{
    const char *name;
    QString text, wanted;
};

/// Each text by the operation.
template <typename Operation>
void check(Operation operation, std::initializer_list<Case> cases)
{
    for (const Case &row : cases) EXPECT_EQ(operation(row.text), row.wanted) << row.name;
}

} // namespace tomelet::test
