#pragma once

#include <QComboBox>
#include <QListWidget>

// The platform's controls, as far as signatures name them.
using CComboBox = QComboBox;
using CListBox = QListWidget;
