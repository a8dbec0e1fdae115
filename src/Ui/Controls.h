#pragma once

#include <QComboBox>
#include <QListWidget>

// The platform's controls that signatures use.
using CComboBox = QComboBox;
using CListBox = QListWidget;
