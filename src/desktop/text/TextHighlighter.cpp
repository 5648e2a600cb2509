// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/text/TextHighlighter.h"

#include "desktop/text/HangingIndents.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTextBlock>
#include <QTextDocument>
#include <QThreadPool>

#include <algorithm>

namespace tomelet::desktop {

namespace {

constexpr int linesOfSlice = 400;          // a few milliseconds
constexpr qsizetype smallText = 32 * 1024; // styled before it is first seen

QString textOf(const QTextDocument *document)
{
    return document->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

QColor colorOf(HighlightColor color, const QPalette &palette)
{
    const bool dark = isDark(palette);
    switch (color) {
    case HighlightColor::None: return {};
    case HighlightColor::Base: return palette.color(QPalette::Text);
    case HighlightColor::Faded: return palette.color(QPalette::PlaceholderText);
    case HighlightColor::Label: return palette.color(QPalette::Link);
    case HighlightColor::Heading: return palette.color(QPalette::Text);
    case HighlightColor::HtmlTag: return dark ? QColor(0x8f, 0xb3, 0xc9) : QColor(0x3d, 0x6b, 0x85);
    case HighlightColor::Attribute: return dark ? QColor(0xc8, 0xa5, 0xe0) : QColor(0x7a, 0x4a, 0x9c);
    case HighlightColor::Code: return dark ? QColor(0x9c, 0xc9, 0x9c) : QColor(0x2f, 0x6b, 0x3c);
    case HighlightColor::ListPrefix: return dark ? QColor(0xe0, 0xa8, 0x7a) : QColor(0x9c, 0x55, 0x1f);
    case HighlightColor::Red: return dark ? QColor(0xff, 0x7b, 0x72) : QColor(0xb3, 0x26, 0x1e);
    case HighlightColor::Green: return dark ? QColor(0x7e, 0xd0, 0x8a) : QColor(0x1e, 0x75, 0x33);
    case HighlightColor::Orange: return dark ? QColor(0xff, 0xb0, 0x5c) : QColor(0xa8, 0x56, 0x00);
    case HighlightColor::Blue: return dark ? QColor(0x7a, 0xb0, 0xff) : QColor(0x1a, 0x5f, 0xb4);
    case HighlightColor::Purple: return dark ? QColor(0xd0, 0x9c, 0xff) : QColor(0x7b, 0x2c, 0xbf);
    }
    return {};
}

} // namespace

TextHighlighter::TextHighlighter(QTextDocument *document)
    : QObject(document)
    , m_document(document)
{
    m_again.setSingleShot(true);
    m_again.setInterval(400);
    connect(&m_again, &QTimer::timeout, this, &TextHighlighter::styleAll);
    connect(&m_slices, &QTimer::timeout, this, &TextHighlighter::applySlice);
    connect(document, &QTextDocument::contentsChange, this, &TextHighlighter::contentsChanged);
}

void TextHighlighter::restyle(const HighlightOptions &options, const QPalette &palette)
{
    m_options = options;
    m_palette = palette;
    styleAll();
}

void TextHighlighter::restyleAtOnce(const HighlightOptions &options, const QPalette &palette)
{
    m_options = options;
    m_palette = palette;
    m_lines = std::make_shared<const Lines>(linesOf(textOf(m_document), m_options));
    m_nextLine = 0;
    while (m_lines) applySlice();
}

// -- the whole --------------------------------------------------------------------------------------------------------

TextHighlighter::Lines TextHighlighter::linesOf(const QString &text, const HighlightOptions &options)
{
    std::vector<qsizetype> starts{0};
    for (qsizetype at = text.indexOf(u'\n'); at >= 0; at = text.indexOf(u'\n', at + 1)) starts.push_back(at + 1);
    Lines lines(starts.size());
    const auto endOf = [&](size_t line) { return line + 1 < starts.size() ? starts[line + 1] - 1 : text.size(); };
    for (const StyledRange &style : stylesInRange(text, {0, text.size()}, options)) {
        auto line = size_t(std::ranges::upper_bound(starts, style.range.location) - starts.begin() - 1);
        for (; line < starts.size() && starts[line] < style.range.end(); ++line) {
            const qsizetype from = std::max(style.range.location, starts[line]);
            const qsizetype to = std::min(style.range.end(), endOf(line));
            if (to > from && endOf(line) - starts[line] <= longestStyledLine)
                lines[line].push_back({{from - starts[line], to - from}, style.style});
        }
    }
    return lines;
}

void TextHighlighter::styleAll()
{
    m_slices.stop();
    m_lines.reset();
    const int revision = m_document->revision();
    const QString text = textOf(m_document);
    if (text.size() <= smallText) {
        take(std::make_shared<const Lines>(linesOf(text, m_options)), revision);
        while (m_lines) applySlice();
        return;
    }
    QThreadPool::globalInstance()->start([self = QPointer(this), text, options = m_options, revision] {
        auto lines = std::make_shared<const Lines>(linesOf(text, options));
        QMetaObject::invokeMethod(qApp, [self, lines, revision] {
            if (self) self->take(lines, revision);
        });
    });
}

void TextHighlighter::take(std::shared_ptr<const Lines> lines, int revision)
{
    if (revision != m_document->revision()) return m_again.start();
    m_lines = std::move(lines);
    m_nextLine = 0;
    m_slices.start(0);
}

void TextHighlighter::applySlice()
{
    QTextBlock block = m_document->findBlockByNumber(m_nextLine);
    for (int i = 0; i < linesOfSlice && block.isValid() && m_nextLine < int(m_lines->size()); ++i) {
        applyTo(block, (*m_lines)[size_t(m_nextLine++)]);
        block = block.next();
    }
    if (block.isValid() && m_nextLine < int(m_lines->size())) return;
    m_slices.stop();
    m_lines.reset();
    Q_EMIT finished();
}

// -- a line -----------------------------------------------------------------------------------------------------------

void TextHighlighter::contentsChanged(int position, int, int added)
{
    if (m_paused) return;
    // What is being applied belongs to lines that stand elsewhere now.
    if (m_lines) {
        m_slices.stop();
        m_lines.reset();
        m_again.start();
    }
    const QTextBlock first = m_document->findBlock(position);
    const QTextBlock at = m_document->findBlock(position + added);
    const QTextBlock last = at.isValid() ? at : m_document->lastBlock();
    if (first == last && first.length() > longestStyledLine) return applyTo(first, {});
    const bool atStart = first.position() == 0;
    QString text = atStart ? QString() : QStringLiteral("\n");
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        text += block.text() + u'\n';
        if (block == last) break;
    }
    // A new line in front shows that the text does not begin here; its own line is left out again.
    const qsizetype offset = atStart ? 0 : 1;
    const auto styles = stylesInRange(text, {offset, text.size() - offset}, m_options);
    QTextBlock block = first;
    for (qsizetype start = offset; block.isValid() && start < text.size(); block = block.next()) {
        const qsizetype end = start + block.length() - 1;
        std::vector<StyledRange> own;
        for (const StyledRange &style : styles) {
            const qsizetype from = std::max(style.range.location, start);
            const qsizetype to = std::min(style.range.end(), end);
            if (to > from) own.push_back({{from - start, to - from}, style.style});
        }
        applyTo(block, own);
        start = end + 1;
    }
}

QTextCharFormat TextHighlighter::formatOf(const HighlightStyle &style) const
{
    QTextCharFormat format;
    if (style.color != HighlightColor::None) format.setForeground(colorOf(style.color, m_palette));
    if (style.bold) format.setFontWeight(QFont::Bold);
    if (style.italic) format.setFontItalic(true);
    if (style.strikethrough) format.setFontStrikeOut(true);
    if (style.isLink) format.setFontUnderline(true);
    return format;
}

void TextHighlighter::applyTo(const QTextBlock &block, const std::vector<StyledRange> &styles)
{
    QList<QTextLayout::FormatRange> ranges;
    int prefix = 0;
    for (const StyledRange &style : styles) {
        ranges.append({int(style.range.location), int(style.range.length), formatOf(style.style)});
        if (style.style.hangingIndent) prefix = int(style.range.end());
    }
    const bool indentChanged = HangingIndents::setPrefix(block, prefix);
    if (ranges == block.layout()->formats() && !indentChanged) return;
    block.layout()->setFormats(ranges);
    m_document->markContentsDirty(block.position(), block.length());
}

} // namespace tomelet::desktop
