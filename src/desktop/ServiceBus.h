// SPDX-License-Identifier: GPL-3.0-or-later
// The services for other programs on the session bus: org.tomelet.app, /org/tomelet/app/Services.
//
//   gdbus call --session -d org.tomelet.app -o /org/tomelet/app/Services -m org.tomelet.app.Services.AddQuickNote
#pragma once

#include <QObject>

namespace tomelet {

class TMLTServiceProvider;

namespace desktop {

class ServiceBus final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tomelet.app.Services")

public:
    /// Offers the services while it lives; without a bus, or where another program has the name, nothing happens.
    explicit ServiceBus(TMLTServiceProvider &services);
    ~ServiceBus() override;

public Q_SLOTS:
    void AddQuickNote();
    /// The path of the new document, "" for an empty selection. `html` may be empty.
    QString AddSelection(const QString &plain, const QString &html);
    QString AddSelectionPlain(const QString &plain);
    /// False when no window shows a document that takes text.
    bool InsertIntoCurrentDocument(const QString &plain);

private:
    TMLTServiceProvider &m_services;
};

} // namespace desktop

} // namespace tomelet
