// SPDX-License-Identifier: GPL-3.0-or-later
// The files that a document refers to and that a package stores: each URL gets an identifier of its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tomelet::engine {

struct asset
{
    std::string url;
    std::string asset_path; ///< a random UUID (RFC 4122, version 4), the name in the package
};

struct asset_table
{
    std::vector<asset> assets; ///< in the order of first use
    std::unordered_map<std::string, size_t> index;
};

/// The asset of a URL, made when it is new. `random` is the state of the generator.
const asset &asset_for_url(asset_table &table, std::string_view url, uint64_t &random);
[[nodiscard]] std::string new_uuid(uint64_t &random);
void asset_table_free(asset_table *table);

} // namespace tomelet::engine
