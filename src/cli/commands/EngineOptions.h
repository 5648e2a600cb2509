// SPDX-License-Identifier: GPL-3.0-or-later
// The options of the commands that call the Markdown engine alone.
#pragma once

#include <QCommandLineParser>
#include <QString>

#include <cstdint>
#include <optional>

namespace tomelet::cli {

/// The extensions that the application converts with: transclusion, CriticMarkup, notes.
inline constexpr uint32_t defaultExtensions = 8720;

/// Adds --extensions N.
void addExtensionsOption(QCommandLineParser &parser);
/// The mask of --extensions, the fallback without it; nothing when it is no number.
[[nodiscard]] std::optional<uint32_t> extensionsOption(const QCommandLineParser &parser, uint32_t fallback);

/// A file's bytes, or all of standard input for "-"; nothing when the file cannot be read, with `error`
/// saying why.
[[nodiscard]] std::optional<QByteArray> readInput(const QString &name, QString &error);

} // namespace tomelet::cli
