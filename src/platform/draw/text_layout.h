// Breaks a text into the lines that DrawTextW draws, measures them and finds the character to underline. No state.
#pragma once

#include <QString>
#include <QVector>

class QFontMetrics;

namespace draw {

inline constexpr int LongestText = 8192;

struct TextLine {
    QString text;
    int width = 0;
    // Index of the character with the underline, or -1.
    int underlined = -1;
};

struct TextLayout {
    QVector<TextLine> lines;
    int lineHeight = 0;

    int Height() const { return int(lines.size()) * lineHeight; }
    // Of the widest line.
    int Width() const;
};

// The text without its "&" marks: a pair stands for one, and one at the end for nothing.
QString WithoutMarks(const QString& text);

// `format` as in Surface::DrawTextW; words wrap at `width` pixels with DT_WORDBREAK. A word wider than that keeps its
// line.
TextLayout LayOutText(const QString& text, const QFontMetrics& metrics, int width, unsigned format);

} // namespace draw
