#pragma once

#include "Base/Text.h"

#include <QString>

/// 8-bit text for a control. Bytes that are no UTF-8 show as U+FFFD.
inline QString toUi(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// What a control holds, as 8-bit text.
inline CString fromUi(const QString& text)
{
    return text.toStdString();
}
