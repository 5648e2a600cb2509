// SPDX-License-Identifier: GPL-3.0-or-later
// The steps of the rewrite from HTML to Markdown that have a file of their own.
#pragma once

#include "conversion/Patterns.h"

#include <initializer_list>

namespace tomelet {

struct Sweep
{
    QString pattern;
    QString replacement;
};

inline void sweepAll(QString &text, std::initializer_list<Sweep> sweeps)
{
    for (const Sweep &sweep : sweeps) text = regexSweep(text, sweep.pattern, sweep.replacement);
}

// The innermost goes first.
void convertQuotes(QString &text);
void convertLists(QString &text);

// The first one goes first.
void convertParagraphs(QString &text);
void convertTables(QString &text);
void convertLinks(QString &text);
void convertImages(QString &text);
void convertDefinitionLists(QString &text);

// A plain div inside another one says nothing: of the first two in one another, the plain one goes.
void mergeDoubleContainers(QString &text);

} // namespace tomelet
