// SPDX-License-Identifier: GPL-3.0-or-later
// Records by texts that belong to them. An entry that is added twice under one text keeps the first.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace tomelet::engine {

/// Bob Jenkins' mix of 1996 over groups of twelve bytes.
struct text_hash
{
    [[nodiscard]] size_t operator()(std::string_view text) const;
};

template <typename Record>
using string_table = std::unordered_map<std::string_view, Record *, text_hash>;

template <typename Record>
Record *find_record(const string_table<Record> &table, std::string_view text)
{
    const auto found = table.find(text);
    return found == table.end() ? nullptr : found->second;
}

} // namespace tomelet::engine
