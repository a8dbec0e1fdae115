#pragma once

#include <QCursor>
#include <QGuiApplication>

/// Shows a cursor in its scope. Scopes can be nested: the cursor of the innermost one is shown.
template <Qt::CursorShape Shape>
class CursorScope
{
public:
    CursorScope() { QGuiApplication::setOverrideCursor(Shape); }
    ~CursorScope() { QGuiApplication::restoreOverrideCursor(); }
    CursorScope(const CursorScope&) = delete;
    CursorScope& operator=(const CursorScope&) = delete;
};

using WaitCursor = CursorScope<Qt::WaitCursor>;
using PlainCursor = CursorScope<Qt::ArrowCursor>; ///< for a box during long work
