// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/links/LinkJournal.h"

#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/PropertyStore.h"
#include "library/Root.h"

#include <QFile>

#include <mutex>
#include <signal.h>
#include <unistd.h>

namespace tomelet {

namespace {

const QString fromKey = QStringLiteral("from");
const QString toKey = QStringLiteral("to");
const QString belowKey = QStringLiteral("allBelow");
const QString processKey = QStringLiteral("process");

QString journalFile()
{
    return joinPath(rootStateFolder(), QStringLiteral("MovesInWork.plist"));
}

std::mutex &journalMutex()
{
    static std::mutex mutex;
    return mutex;
}

void write(const QVariantList &entries)
{
    if (!entries.isEmpty()) writeStore(journalFile(), entries);
    else QFile::remove(journalFile());
}

QVariantMap entryOf(const MoveInWork &move)
{
    return {{fromKey, move.from}, {toKey, move.to}, {belowKey, move.allBelow}, {processKey, qlonglong(::getpid())}};
}

MoveInWork moveOf(const QVariantMap &entry)
{
    return {entry.value(fromKey).toString(), entry.value(toKey).toString(), boolFromVariant(entry.value(belowKey))};
}

bool isAbandoned(const QVariantMap &entry)
{
    const auto process = pid_t(integerFromVariant(entry.value(processKey)));
    return process != ::getpid() && (process <= 0 || ::kill(process, 0) != 0);
}

} // namespace

void noteMove(const MoveInWork &move)
{
    const std::lock_guard lock(journalMutex());
    if (!makeFolder(rootStateFolder())) return;
    QVariantList entries = readArray(journalFile());
    entries.append(entryOf(move));
    write(entries);
}

void forgetMove(const MoveInWork &move)
{
    const std::lock_guard lock(journalMutex());
    QVariantList entries = readArray(journalFile());
    if (entries.removeOne(entryOf(move))) write(entries);
}

QList<MoveInWork> takeAbandonedMoves()
{
    const std::lock_guard lock(journalMutex());
    QVariantList kept;
    QList<MoveInWork> abandoned;
    const QVariantList entries = readArray(journalFile());
    for (const QVariant &entry : entries) {
        if (isAbandoned(entry.toMap())) abandoned.append(moveOf(entry.toMap()));
        else kept.append(entry);
    }
    if (!abandoned.isEmpty()) write(kept);
    return abandoned;
}

} // namespace tomelet
