// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/EngineOptions.h"

#include "cli/Invocation.h"

#include <QFile>

namespace tomelet::cli {

static QString extensionsName()
{
    return QStringLiteral("extensions");
}

void addExtensionsOption(QCommandLineParser &parser)
{
    parser.addOption(
        {extensionsName(), QStringLiteral("The engine's extensions, the sum of their bits."), QStringLiteral("N")});
}

std::optional<uint32_t> extensionsOption(const QCommandLineParser &parser, uint32_t fallback)
{
    if (!parser.isSet(extensionsName())) return fallback;
    bool isNumber = false;
    const uint32_t mask = parser.value(extensionsName()).toUInt(&isNumber);
    return isNumber ? std::optional(mask) : std::nullopt;
}

std::optional<QByteArray> readInput(const QString &name, QString &error)
{
    if (name == QLatin1StringView("-")) return readStandardInput();
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot read \"%1\": %2").arg(name, file.errorString());
        return std::nullopt;
    }
    return file.readAll();
}

} // namespace tomelet::cli
