// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Assets.h"

#include "engine/Labels.h"

#include <array>
#include <cstdio>

namespace tomelet::engine {

std::string new_uuid(uint64_t &random)
{
    std::array<unsigned, 16> b{};
    for (unsigned &byte : b) byte = static_cast<unsigned>(next_random(random) & 0xFF);
    b[6] = 0x40 | (b[6] & 0x0F); // the version
    b[8] = 0x80 | (b[8] & 0x3F); // the variant
    char text[37];
    std::snprintf(text, sizeof text, "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x", b[0], b[1],
                  b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
    return text;
}

const asset &asset_for_url(asset_table &table, std::string_view url, uint64_t &random)
{
    const auto [entry, added] = table.index.emplace(url, table.assets.size());
    if (added) table.assets.push_back({std::string(url), new_uuid(random)});
    return table.assets[entry->second];
}

void asset_table_free(asset_table *table)
{
    delete table;
}

} // namespace tomelet::engine
