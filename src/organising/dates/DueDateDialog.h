// SPDX-License-Identifier: GPL-3.0-or-later
// The logic of the dialog that sets due dates, alerts and repeats: what it starts with, how its controls hang
// together, and what its buttons do.
#pragma once

#include "foundation/Platform.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>

namespace tomelet {

/// A due date with a repeat rule, as the dialog shows and gives it. An empty list is no repeat.
struct DueDateChoice
{
    QDateTime date;
    QStringList repeatDetails;
};

/// The state of the repeat controls; the widgets show it and call it.
class TMLTDueDatePicker
{
public:
    /// "Don't Repeat", "Every", "When done, after".
    [[nodiscard]] static QStringList typeTitles();
    /// The units hour to year by their singular words up to a factor of 1, by the plural ones above.
    [[nodiscard]] QStringList unitTitles() const;

    void setRepeatDetails(const QStringList &details);
    /// Empty for no repeat.
    [[nodiscard]] QStringList repeatDetails() const;

    /// Chooses a type by its index. True when the factor field is to have the focus: a new rule begins with
    /// one week.
    bool chooseType(int index);
    void chooseUnit(int index) { m_unit = index; }
    void setFactor(qlonglong factor) { m_factor = factor; }

    [[nodiscard]] int type() const { return m_type; }
    [[nodiscard]] int unit() const { return m_unit; }
    [[nodiscard]] qlonglong factor() const { return m_factor; }
    /// Unit and factor are hidden while nothing repeats.
    [[nodiscard]] bool showsUnitAndFactor() const { return m_type != 0; }

private:
    int m_type = 0;
    int m_unit = 0;
    qlonglong m_factor = 0;
};

/// Title, text and the buttons "Set", "Clear" and "Cancel".
[[nodiscard]] Question dueDateQuestion();
/// What the dialog starts with: date and rule of the first item; today's midnight without a date; a day
/// without an alert begins at its midnight.
[[nodiscard]] DueDateChoice startOfDueDateDialog(const QStringList &items);

/// Sets the chosen rule. Who goes from a rule to "Don't Repeat" means it; where the dialog began without one
/// (`hadRule`), items keep what they have.
void setChosenRepeat(const QString &item, const QStringList &details, bool hadRule);

/// Shows the dialog, changing the choice; gives the index of the button.
using DueDateDialog = std::function<int(const Question &question, DueDateChoice &choice)>;
/// The whole dialog for these items. What it does to them comes a moment later, when it has closed.
void tm_showDueDateDialogForItems(const QStringList &items, const DueDateDialog &dialog);

/// The info panel's command: the items keep their days and lose their alerts.
void clearAlerts(const QStringList &items);

} // namespace tomelet
