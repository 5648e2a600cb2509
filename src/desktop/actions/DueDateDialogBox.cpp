// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/actions/DueDateDialogBox.h"

#include "foundation/Localization.h"
#include "organising/dates/DueDateCalendar.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTextCharFormat>
#include <QTimeEdit>
#include <QVBoxLayout>

namespace tomelet::desktop {

// What a repeat rule can hold.
static constexpr int largestFactor = 1000000;

DueDateDialogBox::DueDateDialogBox(const Question &question, const DueDateChoice &start, QWidget *parent)
    : QDialog(parent)
    , m_calendar(new QCalendarWidget)
    , m_date(new QDateEdit)
    , m_alert(new QCheckBox(localized(TOMELET_TEXT("&Alert at"))))
    , m_time(new QTimeEdit)
    , m_type(new QComboBox)
    , m_factor(new QSpinBox)
    , m_unit(new QComboBox)
    , m_buttons(new QDialogButtonBox)
    , m_button(int(question.buttons.size()) - 1)
{
    setWindowTitle(question.title);
    setAccessibleDescription(question.text);
    auto *title = new QLabel(question.title);
    QFont font = title->font();
    font.setWeight(QFont::DemiBold);
    title->setFont(font);
    auto *text = new QLabel(question.text);
    text->setWordWrap(true);
    makeFields();
    makeButtons(question.buttons);

    auto *alert = new QHBoxLayout;
    alert->addWidget(m_alert);
    alert->addWidget(m_time, 1);
    auto *repeat = new QHBoxLayout;
    repeat->addWidget(m_type, 1);
    repeat->addWidget(m_factor);
    repeat->addWidget(m_unit);
    auto *form = new QFormLayout;
    form->addRow(localized(TOMELET_TEXT("&Date")), m_date);
    form->addRow({}, alert);
    auto *repeatLabel = new QLabel(localized(TOMELET_TEXT("&Repeat")));
    repeatLabel->setBuddy(m_type);
    form->addRow(repeatLabel, repeat);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addWidget(m_calendar, 1);
    layout->addLayout(form);
    layout->addWidget(m_buttons);

    showStart(start);
    m_date->setFocus();
}

void DueDateDialogBox::makeFields()
{
    m_calendar->setAccessibleName(localized(TOMELET_TEXT("Calendar")));
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday}) m_calendar->setWeekdayTextFormat(day, {});
    m_date->setAccessibleName(localized(TOMELET_TEXT("Due date")));
    m_date->setMinimumDate(QDate(100, 1, 1));
    // Two digits would change the century of what they show.
    if (QString format = m_date->displayFormat(); !format.contains(u"yyyy"))
        m_date->setDisplayFormat(format.replace(QLatin1String("yy"), QLatin1String("yyyy")));
    m_time->setAccessibleName(localized(TOMELET_TEXT("Time of the alert")));
    m_type->setAccessibleName(localized(TOMELET_TEXT("Repeat")));
    m_type->addItems(TMLTDueDatePicker::typeTitles());
    m_factor->setAccessibleName(localized(TOMELET_TEXT("How many")));
    m_factor->setRange(1, largestFactor);
    m_unit->setAccessibleName(localized(TOMELET_TEXT("Unit of time")));
    // The dialog keeps its size while they come and go.
    for (QWidget *field : {static_cast<QWidget *>(m_factor), static_cast<QWidget *>(m_unit)}) {
        QSizePolicy policy = field->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        field->setSizePolicy(policy);
    }

    connect(m_calendar, &QCalendarWidget::selectionChanged, m_date,
            [this] { m_date->setDate(m_calendar->selectedDate()); });
    connect(m_date, &QDateEdit::dateChanged, m_calendar, &QCalendarWidget::setSelectedDate);
    connect(m_alert, &QCheckBox::toggled, this, &DueDateDialogBox::showAlert);
    connect(m_type, &QComboBox::currentIndexChanged, this, &DueDateDialogBox::chooseType);
    connect(m_factor, &QSpinBox::valueChanged, this, [this](int factor) {
        m_picker.setFactor(factor);
        showRepeat();
    });
    connect(m_unit, &QComboBox::currentIndexChanged, this, [this](int index) { m_picker.chooseUnit(index); });
}

void DueDateDialogBox::makeButtons(const QStringList &texts)
{
    // In the order given, which the platform's own order would change.
    for (int i = 0; i < texts.size(); ++i) {
        QPushButton *button = m_buttons->addButton(texts[i], QDialogButtonBox::ResetRole);
        button->setAutoDefault(false);
        if (i == 0) button->setDefault(true);
        connect(button, &QPushButton::clicked, this, [this, i, last = i + 1 == texts.size()] {
            m_button = i;
            last ? reject() : accept();
        });
    }
}

void DueDateDialogBox::showStart(const DueDateChoice &start)
{
    const QDateTime local = start.date.toLocalTime();
    m_date->setDate(local.date());
    m_calendar->setSelectedDate(local.date());
    const bool hasAlert = local.time() != QTime(0, 0);
    m_alert->setChecked(hasAlert);
    showAlert(hasAlert);
    m_time->setTime(local.time());
    m_picker.setRepeatDetails(start.repeatDetails);
    showRepeat();
}

// A day's first alert begins at an hour at which people are about.
void DueDateDialogBox::showAlert(bool on)
{
    m_time->setEnabled(on);
    m_time->setTime(on ? QTime(9, 0) : QTime(0, 0));
}

void DueDateDialogBox::chooseType(int index)
{
    const bool isNewRule = m_picker.chooseType(index);
    showRepeat();
    if (isNewRule) {
        m_factor->setFocus();
        m_factor->selectAll();
    }
}

void DueDateDialogBox::showRepeat()
{
    const QSignalBlocker quietType(m_type);
    const QSignalBlocker quietFactor(m_factor);
    const QSignalBlocker quietUnit(m_unit);
    m_type->setCurrentIndex(m_picker.type());
    m_factor->setValue(int(std::min<qlonglong>(m_picker.factor(), largestFactor)));
    m_unit->clear();
    m_unit->addItems(m_picker.unitTitles());
    m_unit->setCurrentIndex(m_picker.unit());
    m_factor->setVisible(m_picker.showsUnitAndFactor());
    m_unit->setVisible(m_picker.showsUnitAndFactor());
}

DueDateChoice DueDateDialogBox::choice() const
{
    return {momentOf(m_date->date(), m_alert->isChecked() ? m_time->time() : QTime(0, 0)), m_picker.repeatDetails()};
}

DueDateDialog dueDateDialogOver(QWidget *widget)
{
    return [over = QPointer<QWidget>(widget)](const Question &question, DueDateChoice &choice) {
        DueDateDialogBox box(question, choice, over ? over->window() : nullptr);
        box.exec();
        choice = box.choice();
        return box.button();
    };
}

} // namespace tomelet::desktop
