#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

class Diagram;

/// The maximum width and height of a PNG in pixels.
constexpr int kMaxPixels = 16000;

/// Returns the size of a diagram as a PNG: twice its own, for printing, or less at the limits of viewers. Sets `scale`
/// to the factor.
QSize pngSize(const Diagram& diagram, double& scale);

/// Return a diagram as a file. May run in any thread. Report progress. Throw Cancelled; drawPng() also throws
/// std::runtime_error without memory for the picture.
QByteArray drawPng(const Diagram& diagram);
QByteArray drawSvg(const Diagram& diagram, const QString& title);
