#include "draw/text_layout.h"

#include "draw/surface.h"

#include <QFontMetrics>
#include <algorithm>

namespace draw {
namespace {

// Takes the "&" marks out: a pair stands for one, the last single one marks the character behind it.
TextLine WithoutPrefixes(const QString& text, unsigned format) {
    TextLine line;
    if (format & DT_NOPREFIX) {
        line.text = text;
        return line;
    }
    line.text.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && i + 1 < text.size()) {
            ++i;
            if (text[i] != u'&')
                line.underlined = int(line.text.size());
        } else if (text[i] == u'&') {
            continue;
        }
        line.text += text[i];
    }
    if (format & DT_HIDEPREFIX)
        line.underlined = -1;
    return line;
}

// A part of a line, with the underline where it falls into the part.
TextLine PartOf(const TextLine& line, qsizetype from, qsizetype length, const QFontMetrics& metrics) {
    TextLine part;
    part.text = line.text.mid(from, length);
    part.width = metrics.horizontalAdvance(part.text);
    if (line.underlined >= from && line.underlined < from + length)
        part.underlined = line.underlined - int(from);
    return part;
}

// Breaks a paragraph at blanks; the blank at a break belongs to neither line.
void WrapWords(const TextLine& paragraph, const QFontMetrics& metrics, int width, QVector<TextLine>& lines) {
    const QString& text = paragraph.text;
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = -1; // of what fits
        for (qsizetype blank = text.indexOf(u' ', start);; blank = text.indexOf(u' ', blank + 1)) {
            const qsizetype candidate = blank < 0 ? text.size() : blank;
            if (end >= 0 && metrics.horizontalAdvance(text.mid(start, candidate - start)) > width)
                break;
            end = candidate;
            if (blank < 0 || metrics.horizontalAdvance(text.mid(start, end - start)) > width)
                break;
        }
        lines.append(PartOf(paragraph, start, end - start, metrics));
        start = end + 1;
    }
    if (text.isEmpty())
        lines.append(TextLine());
}

} // namespace

QString WithoutMarks(const QString& text) { return WithoutPrefixes(text, 0).text; }

int TextLayout::Width() const {
    int widest = 0;
    for (const TextLine& line : lines)
        widest = std::max(widest, line.width);
    return widest;
}

TextLayout LayOutText(const QString& text, const QFontMetrics& metrics, int width, unsigned format) {
    TextLayout layout;
    layout.lineHeight = metrics.height();
    const TextLine whole = WithoutPrefixes(text.left(LongestText), format);
    if (format & DT_SINGLELINE) {
        TextLine line = whole;
        // Line ends have no glyphs here; they count as blanks.
        line.text.replace(u'\r', u' ').replace(u'\n', u' ');
        if (format & DT_END_ELLIPSIS)
            line.text = metrics.elidedText(line.text, Qt::ElideRight, width);
        line.width = metrics.horizontalAdvance(line.text);
        layout.lines.append(line);
        return layout;
    }
    qsizetype start = 0;
    for (;;) {
        const qsizetype lineEnd = whole.text.indexOf(u'\n', start);
        qsizetype length = (lineEnd < 0 ? whole.text.size() : lineEnd) - start;
        if (length > 0 && whole.text[start + length - 1] == u'\r')
            --length;
        const TextLine paragraph = PartOf(whole, start, length, metrics);
        if (format & DT_WORDBREAK)
            WrapWords(paragraph, metrics, width, layout.lines);
        else
            layout.lines.append(paragraph);
        if (lineEnd < 0)
            return layout;
        start = lineEnd + 1;
    }
}

} // namespace draw
