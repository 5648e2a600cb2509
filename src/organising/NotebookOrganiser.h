// SPDX-License-Identifier: GPL-3.0-or-later
// What organises the library, behind the seam of the library's spine.
#pragma once

namespace tomelet {

/// Puts the notebook's organiser in force; called once by each shell.
void installNotebookOrganiser();

} // namespace tomelet
