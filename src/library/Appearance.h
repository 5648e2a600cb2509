// SPDX-License-Identifier: GPL-3.0-or-later
// How an item's text looks: font, spacing, colours, inherited from book to book with the settings behind them.
#pragma once

#include <QString>
#include <QVariant>

#include <array>
#include <optional>

namespace tomelet {

/// Red, green, blue and alpha from 0 to 1.
using Color = std::array<double, 4>;

struct Font
{
    QString face;
    double size = 14;
};

/// What an item is shown with. The true colours are those before a theme was laid over them.
struct ItemColors
{
    QString text;
    QString imageName; ///< file name, or a path that mentions `TMResources`; "" for none
    QString background;
    QString trueText;
    QString trueBackground;
};

/// Four decimal numbers between single blanks; any other text gives no colour.
[[nodiscard]] std::optional<Color> tm_colorFromString(const QString &text);

[[nodiscard]] double tm_fontSizeAtPath(const QString &path);
[[nodiscard]] QString tm_fontFaceAtPath(const QString &path);
[[nodiscard]] Font tm_fontForPath(const QString &path);
[[nodiscard]] double tm_linespacingAtPath(const QString &path);
/// 0 for the discount engine, 1 for the system's own.
[[nodiscard]] qlonglong tm_markdownConverterAtPath(const QString &path);
[[nodiscard]] ItemColors tm_colorsAtPath(const QString &path);

} // namespace tomelet
