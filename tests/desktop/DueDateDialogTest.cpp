// SPDX-License-Identifier: GPL-3.0-or-later
// The due date dialog, worked by the keyboard alone.
#include "tests/organising/Tasklist.h"

#include "desktop/actions/DueDateDialogBox.h"

#include <QAbstractButton>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDateEdit>
#include <QSpinBox>
#include <QTest>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class DueDate : public tomelet::test::Tasklist
{
protected:
    DueDate() { QLocale::setDefault(QLocale(QStringLiteral("en_US"))); }
    ~DueDate() override { QLocale::setDefault(QLocale::system()); }

    /// A dialog on screen that starts at a local time, with a repeat rule.
    DueDateDialogBox &open(const QString &local, const QStringList &repeat = {})
    {
        const QDateTime start = QDateTime::fromString(local, Qt::ISODate).toUTC();
        box = std::make_unique<DueDateDialogBox>(dueDateQuestion(), DueDateChoice{start, repeat});
        box->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(box.get()));
        return *box;
    }
    /// Keys go to whatever has the focus.
    void type(const char *text) const { QTest::keyClicks(box->focusWidget(), QString::fromLatin1(text)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(box->focusWidget(), key, modifiers);
    }
    [[nodiscard]] QString chosen() const
    {
        const DueDateChoice choice = box->choice();
        return choice.date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm ")) +
               choice.repeatDetails.join(u' ');
    }

    std::unique_ptr<DueDateDialogBox> box;
};

} // namespace

TEST_F(DueDate, givesBackWhatItStartedWith)
{
    open(QStringLiteral("2026-11-21T00:00:00"));
    EXPECT_EQ(chosen(), QStringLiteral("2026-11-21 00:00 "));
    open(QStringLiteral("2026-11-21T17:45:00"),
         {QStringLiteral("when done"), QStringLiteral("month"), QStringLiteral("3")});
    EXPECT_EQ(chosen(), QStringLiteral("2026-11-21 17:45 when done month 3"));
    // The hour that comes twice, and a date of long ago.
    open(QStringLiteral("2026-10-25T02:30:00"));
    EXPECT_EQ(chosen(), QStringLiteral("2026-10-25 02:30 "));
    open(QStringLiteral("1899-02-28T00:00:00"));
    EXPECT_EQ(chosen(), QStringLiteral("1899-02-28 00:00 "));
}

TEST_F(DueDate, setsDateAlertAndRepeatByKeys)
{
    open(QStringLiteral("2026-11-21T00:00:00"));
    type("125/2027"); // the month is complete with its second digit
    EXPECT_EQ(chosen(), QStringLiteral("2027-12-05 00:00 "));
    EXPECT_EQ(box->findChild<QCalendarWidget *>()->selectedDate(), QDate(2027, 12, 5));
    press(Qt::Key_A, Qt::AltModifier); // a button is pressed for a moment
    EXPECT_TRUE(QTest::qWaitFor([this] { return box->choice().date.toLocalTime().time() != QTime(0, 0); }));
    EXPECT_EQ(chosen(), QStringLiteral("2027-12-05 09:00 "));
    press(Qt::Key_Tab);
    press(Qt::Key_Up);
    EXPECT_EQ(chosen(), QStringLiteral("2027-12-05 10:00 "));
    press(Qt::Key_R, Qt::AltModifier);
    press(Qt::Key_Down);
    EXPECT_EQ(chosen(), QStringLiteral("2027-12-05 10:00 when due week 1"));
    type("2"); // the number has the focus now
    const auto *units = box->findChildren<QComboBox *>().last();
    EXPECT_EQ(units->currentText(), QStringLiteral("weeks"));
    press(Qt::Key_Return);
    EXPECT_EQ(box->button(), 0);
    EXPECT_EQ(chosen(), QStringLiteral("2027-12-05 10:00 when due week 2"));
}

TEST_F(DueDate, hasThreeButtonsInTheirOrder)
{
    const QList<QAbstractButton *> buttons =
        open(QStringLiteral("2026-11-21T00:00:00")).findChildren<QAbstractButton *>();
    QStringList texts;
    for (const QAbstractButton *button : buttons) texts.append(button->text());
    EXPECT_LT(texts.indexOf(u"Set"), texts.indexOf(u"Clear"));
    EXPECT_LT(texts.indexOf(u"Clear"), texts.indexOf(u"Cancel"));
    EXPECT_EQ(box->button(), 2); // closed by the window's frame
    buttons[texts.indexOf(u"Clear")]->click();
    EXPECT_EQ(box->button(), 1);
    open(QStringLiteral("2026-11-21T00:00:00"));
    press(Qt::Key_Escape);
    EXPECT_FALSE(box->isVisible());
    EXPECT_EQ(box->button(), 2);
}

TEST_F(DueDate, namesEveryFieldForScreenReaders)
{
    open(QStringLiteral("2026-11-21T17:45:00"),
         {QStringLiteral("when due"), QStringLiteral("day"), QStringLiteral("1")});
    for (const QWidget *field : box->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (field->focusPolicy() == Qt::NoFocus || qobject_cast<const QAbstractButton *>(field)) continue;
        EXPECT_FALSE(field->accessibleName().isEmpty()) << field->metaObject()->className();
    }
}
