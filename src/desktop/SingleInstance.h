// SPDX-License-Identifier: GPL-3.0-or-later
// One running program a user: a second start hands its argument to the first.
#pragma once

#include <QLocalServer>
#include <QObject>

namespace tomelet::desktop {

class SingleInstance final : public QObject
{
    Q_OBJECT

public:
    /// True when another instance runs and has been told; otherwise this one listens from now on.
    [[nodiscard]] bool handedOverTo(const QString &path);

Q_SIGNALS:
    void handedOver(const QString &path);

private:
    void receive();

    QLocalServer m_server;
};

} // namespace tomelet::desktop
