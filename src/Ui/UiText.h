#pragma once

#include "Base/Text.h"

#include <QLocale>
#include <QString>

/// Returns 8-bit text as Qt's. Invalid UTF-8 becomes U+FFFD.
inline QString toUi(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Returns Qt's text as UTF-8.
inline CString fromUi(const QString& text)
{
    return text.toStdString();
}

/// Returns a count with its noun, in the locale's digits: "1 type", "1,200 types".
inline QString shownCount(qlonglong count, const QString& singular, const QString& plural)
{
    return QLocale().toString(count) + ' ' + (count == 1 ? singular : plural);
}
