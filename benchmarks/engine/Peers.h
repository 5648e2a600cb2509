// SPDX-License-Identifier: GPL-3.0-or-later
// One call for each library that is measured: Markdown in, HTML made and thrown away, the HTML's length out.
#pragma once

#include <cstddef>
#include <string>

namespace tomelet::bench {

size_t convertWithEngine(const std::string &text);
size_t convertWithCmark(const std::string &text);
size_t convertWithMd4c(const std::string &text);
size_t convertWithDiscount(const std::string &text);

} // namespace tomelet::bench
