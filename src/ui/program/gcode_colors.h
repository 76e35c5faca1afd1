// gcode_colors.h: the colours of G-code words, from the table of codes.
#pragma once

#include <QList>
#include <QString>
#include <QTextLayout>

namespace norvik {

// Formats for the words of one line. Codes that the compiler acts on, that are harmless, that are
// ignored, coordinates, feeds and speeds, comments and letters that nobody reads differ in colour;
// ignored codes and unread letters are underlined as well, as colour is never the only sign.
QList<QTextLayout::FormatRange> GCode_HighlightWords(const QString& line);

}  // namespace norvik
