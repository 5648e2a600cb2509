// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog that sets due date, alert and repeat of tasks.
#pragma once

#include "organising/dates/DueDateDialog.h"

#include <QDialog>

class QCalendarWidget;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QDialogButtonBox;
class QSpinBox;
class QTimeEdit;

namespace tomelet::desktop {

class DueDateDialogBox final : public QDialog
{
    Q_OBJECT

public:
    DueDateDialogBox(const Question &question, const DueDateChoice &start, QWidget *parent = nullptr);

    /// What is set at the moment; midnight stands for a day without an alert.
    [[nodiscard]] DueDateChoice choice() const;
    /// The index of the button that closed the dialog; the last one, where none did.
    [[nodiscard]] int button() const { return m_button; }

private:
    void makeFields();
    void makeButtons(const QStringList &texts);
    void showStart(const DueDateChoice &start);
    void chooseType(int index);
    void showRepeat();
    void showAlert(bool on);

    TMLTDueDatePicker m_picker;
    QCalendarWidget *m_calendar;
    QDateEdit *m_date;
    QCheckBox *m_alert;
    QTimeEdit *m_time;
    QComboBox *m_type;
    QSpinBox *m_factor;
    QComboBox *m_unit;
    QDialogButtonBox *m_buttons;
    int m_button;
};

/// Shows the dialog over the widget's window.
[[nodiscard]] DueDateDialog dueDateDialogOver(QWidget *widget);

} // namespace tomelet::desktop
