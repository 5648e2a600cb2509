// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/tasks/TaskStore.h"

#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyList.h"
#include "foundation/PropertyStore.h"
#include "foundation/SafeWriter.h"

namespace tomelet {

namespace {

const QString doneCountKey = QStringLiteral("__DoneItemCount__");
const QString dueCountKey = QStringLiteral("__DueItemCount__");

struct StateText
{
    TaskState state;
    const char *text;
};
constexpr StateText stateTexts[] = {
    {TaskState::Open, "open"},         {TaskState::Started, "started"}, {TaskState::Done, "done"},
    {TaskState::Canceled, "canceled"}, {TaskState::NoTask, "no_task"},
};

} // namespace

QString taskStorePath(const QString &book)
{
    return joinPath(book, QStringLiteral("TMTasklistDetails.plist"));
}

QString inactiveTaskStorePath(const QString &book)
{
    return joinPath(book, QStringLiteral("TMTasklistDetails_inactive.plist"));
}

// -- records ----------------------------------------------------------------------------------------------------------

TaskState taskStateFromText(const QString &text)
{
    for (const StateText &row : stateTexts)
        if (text == QLatin1StringView(row.text)) return row.state;
    return TaskState::Open;
}

QString textOfTaskState(TaskState state)
{
    return QLatin1StringView(stateTexts[size_t(state)].text);
}

TaskState stateOf(const TaskRecord &record)
{
    return taskStateFromText(record.value(taskField::state).toString());
}

bool isSettled(TaskState state)
{
    return state == TaskState::Done || state == TaskState::Canceled || state == TaskState::NoTask;
}

QDateTime dateField(const TaskRecord &record, const QString &field)
{
    const QVariant value = record.value(field);
    return value.typeId() == QMetaType::QDateTime ? value.toDateTime() : QDateTime();
}

bool isOverdue(const TaskRecord &record, const QDateTime &now)
{
    const QDateTime due = dateField(record, taskField::dueDate);
    return due.isValid() && due < now;
}

// -- the store --------------------------------------------------------------------------------------------------------

bool isTaskCounter(const QString &key)
{
    return key == doneCountKey || key == dueCountKey;
}

TaskStore::TaskStore(const QString &book)
    : m_book(book)
    , m_path(taskStorePath(book))
{
    const auto bytes = readFile(m_path);
    const auto value = bytes ? parsePropertyList(*bytes) : std::nullopt;
    m_readable = value && value->typeId() == QMetaType::QVariantMap;
    if (m_readable) m_values = value->toMap();
    m_saved = m_values;
}

QStringList TaskStore::keys() const
{
    QStringList keys = m_values.keys();
    keys.removeIf(isTaskCounter);
    return keys;
}

QString TaskStore::keyFor(const QString &name) const
{
    if (m_values.contains(name)) return isTaskCounter(name) ? QString() : name;
    const QStringList all = keys();
    const auto index = tm_localizedIndexOfObject(all, name);
    return index ? all[*index] : QString();
}

TasksOfBook TaskStore::tasks() const
{
    TasksOfBook found;
    const auto entries = listFolder(m_book);
    if (!entries) return found;
    found.folderIsListed = true;
    QStringList names;
    names.reserve(qsizetype(entries->size()));
    for (const FolderEntry &entry : *entries) names.append(entry.name);
    const LocalizedIndex index(names);
    for (auto it = m_values.begin(); it != m_values.end(); ++it) {
        if (isTaskCounter(it.key())) continue;
        const auto at = index.find(it.key());
        const QString name = at ? names[*at] : QString();
        // Of two keys that mean one document, only the one that its lookup finds counts.
        if (at && (name == it.key() || keyFor(name) == it.key()))
            found.live.push_back({it.key(), name, it.value().toMap()});
        else found.vanished.append(it.key());
    }
    return found;
}

TaskRecords::TaskRecords(const QString &book)
    : m_store(book)
    , m_keys(m_store.keys())
    , m_index(m_keys)
{}

TaskRecord TaskRecords::of(const QString &name) const
{
    const auto index = m_index.find(name);
    return index ? m_store.record(m_keys[*index]) : TaskRecord();
}

static qlonglong counter(const QVariantMap &values, const QString &key)
{
    return std::max<qlonglong>(0, integerFromVariant(values.value(key)));
}

qlonglong TaskStore::doneCount() const
{
    return counter(m_values, doneCountKey);
}

qlonglong TaskStore::dueCount() const
{
    return counter(m_values, dueCountKey);
}

void TaskStore::setDoneCount(qlonglong count)
{
    m_values.insert(doneCountKey, QString::number(count));
}

void TaskStore::setDueCount(qlonglong count)
{
    m_values.insert(dueCountKey, QString::number(count));
}

// What was changed here, in a store that somebody else may have changed since it was read: records of other documents
// stay as they are there, and counters move by as much as they moved here.
QVariantMap TaskStore::changesIn(QVariantMap stored) const
{
    if (stored == m_saved) return m_values;
    for (auto it = m_saved.begin(); it != m_saved.end(); ++it)
        if (!m_values.contains(it.key())) stored.remove(it.key());
    for (auto it = m_values.begin(); it != m_values.end(); ++it) {
        if (m_saved.value(it.key()) == it.value()) continue;
        const qlonglong moved = counter(m_values, it.key()) - counter(m_saved, it.key());
        if (!isTaskCounter(it.key())) stored.insert(it.key(), it.value());
        else stored.insert(it.key(), QString::number(std::max(0LL, counter(stored, it.key()) + moved)));
    }
    return stored;
}

bool TaskStore::save()
{
    if (m_readable && m_values == m_saved) return true;
    QVariantMap written;
    const bool isSaved = changeDictionary(m_path, [&](QVariantMap &stored) {
        stored = written = changesIn(stored);
        return true;
    });
    if (!isSaved) return false;
    m_values = m_saved = written;
    m_readable = true;
    return true;
}

void TaskStore::save(StoreBatch &batch)
{
    if (m_readable && m_values == m_saved) return;
    // Who wrote the store meanwhile knows better: what is counted here goes by an older one.
    batch.change(m_path, [saved = m_saved, counted = m_values](QVariantMap &values) {
        if (values != saved) return false;
        values = counted;
        return true;
    });
    m_saved = m_values;
}

void announceTask(const QString &path)
{
    notifications().postPath(QStringLiteral("TMUpdateTaskIconNotification"), path);
}

void announceFile(const QString &path)
{
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), path);
}

} // namespace tomelet
