#pragma once

class QWidget;

/// Has a screen reader read out a text that has just appeared or changed; the focus stays where it is.
void announce(QWidget& label);
