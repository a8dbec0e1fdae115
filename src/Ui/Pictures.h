#pragma once

#include <QImage>
#include <QPalette>

class QPainter;
class QRect;

/// True when the palette writes light text on a dark ground.
bool isDark(const QPalette& palette);

/// The picture of that resource number (1000 to 1003), in three times its size where a screen has points finer than the
/// unit of length, in the tones of the palette: drawn on white, it keeps its hues
/// on a dark ground, and what was light gets dark. Empty when there is no such picture.
QImage picture(int id, const QPalette& palette);

/// Fills the area of a welcome or finish page: the whole picture, with the drawing, stands in its lower right corner,
/// and the picture's edges are drawn out over the rest.
void paintWatermark(QPainter& painter, const QRect& area, const QImage& watermark);

/// Fills a header band of any size: the drawing at the right, in the band's height; the calm left side takes the rest.
void paintHeader(QPainter& painter, const QRect& band, const QImage& header);
