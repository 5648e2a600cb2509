// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/text/SortOptions.h"

#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tomelet::desktop {

static const QString caseSensitive = QStringLiteral("SortLinesCaseSensitive");
static const QString descending = QStringLiteral("SortLinesDescending");

static QCheckBox *addOption(QVBoxLayout *layout, const QString &text, const QString &key)
{
    auto *box = new QCheckBox(text);
    box->setObjectName(key);
    box->setChecked(settings().boolean(key));
    layout->addWidget(box);
    return box;
}

static void store(const QCheckBox *box)
{
    if (box->isChecked()) settings().setObject(box->objectName(), true);
    else settings().remove(box->objectName());
}

void askForSortOptions(QWidget *parent, std::function<void()> sort)
{
    auto *dialog = new QDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(localized(TOMELET_TEXT("Select sort options")));
    auto *layout = new QVBoxLayout(dialog);
    layout->addWidget(new QLabel(dialog->windowTitle()));
    const QCheckBox *isCaseSensitive =
        addOption(layout, localized(TOMELET_TEXT("Capitals differ from small letters")), caseSensitive);
    const QCheckBox *isDescending =
        addOption(layout, localized(TOMELET_TEXT("From the last to the first")), descending);
    auto *buttons = new QDialogButtonBox;
    buttons->addButton(localized(TOMELET_TEXT("Sort")), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(localized(TOMELET_TEXT("Cancel")), QDialogButtonBox::RejectRole);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(dialog, &QDialog::accepted, parent, [isCaseSensitive, isDescending, sort = std::move(sort)] {
        store(isCaseSensitive);
        store(isDescending);
        sort();
    });
    dialog->open();
}

} // namespace tomelet::desktop
