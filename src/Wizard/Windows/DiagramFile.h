#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

class Diagram;

/// The most pixels that a side of a PNG picture has.
constexpr int kMostPixels = 16000;

/// The size of a diagram as a PNG: twice its own, for printing, as far as programs open that. `scale` becomes what it
/// is of its own size.
QSize pngSize(const Diagram& diagram, double& scale);

/// Draws a diagram as a file, in any thread. Tells the progress; raises Cancelled.
QByteArray drawPng(const Diagram& diagram);
QByteArray drawSvg(const Diagram& diagram, const QString& title);
