#pragma once

class QWidget;

/// Makes a screen reader read out a text that has just appeared or changed. The focus stays.
void announce(QWidget& label);
