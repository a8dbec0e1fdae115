#pragma once

#include <QImage>
#include <QPalette>

class QPainter;
class QRect;

/// Returns whether the palette has light text on a dark background. Qt 6.4 has no query for the colour scheme.
bool isDark(const QPalette& palette);

/// Returns the picture of a resource number, 1000 to 1003, in the tones of the palette: on a dark background, colours
/// keep their hue and light turns dark. On screens with a high pixel density it is three times as large, if the
/// resources contain that size. Empty if there is no such picture.
QImage picture(int id, const QPalette& palette);

/// Fills the area of a welcome or finish page: the whole picture in the lower right corner, its edges extended over the
/// rest.
void paintWatermark(QPainter& painter, const QRect& area, const QImage& watermark);

/// Fills a header band of any size: the drawing at the right, in the band's height, its plain left side extended over
/// the rest.
void paintHeader(QPainter& painter, const QRect& band, const QImage& header);
