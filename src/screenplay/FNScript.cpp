// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenplay/FNScript.h"

#include "foundation/SafeWriter.h"
#include "screenplay/FastFountainParser.h"
#include "screenplay/FountainWriter.h"

#include <QFileInfo>

#include <utility>

namespace tomelet {

static void take(FNScript &script, FastFountainParser parser)
{
    script.elements = std::move(parser.elements);
    script.titlePage = std::move(parser.titlePage);
}

FNScript FNScript::initWithFile(const QString &path)
{
    FNScript script;
    script.loadFile(path);
    return script;
}

FNScript FNScript::initWithString(const QString &text)
{
    FNScript script;
    script.loadString(text);
    return script;
}

void FNScript::loadFile(const QString &path)
{
    filename = QFileInfo(path).fileName();
    take(*this, FastFountainParser::initWithFile(path));
}

void FNScript::loadString(const QString &text)
{
    filename.clear();
    take(*this, FastFountainParser::initWithString(text));
}

QString FNScript::stringFromDocument() const
{
    return FountainWriter::documentFromScript(*this);
}

QString FNScript::stringFromTitlePage() const
{
    return FountainWriter::titlePageFromScript(*this);
}

QString FNScript::stringFromBody() const
{
    return FountainWriter::bodyFromScript(*this);
}

bool FNScript::writeToFile(const QString &path) const
{
    return bool(writeFile(path, stringFromDocument().toUtf8()));
}

bool FNScript::writeToURL(const QUrl &url) const
{
    return url.isLocalFile() && writeToFile(url.toLocalFile());
}

} // namespace tomelet
