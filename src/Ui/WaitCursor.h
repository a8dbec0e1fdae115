#pragma once

#include <QCursor>
#include <QGuiApplication>

/// Shows the wait cursor in its scope.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

/// Shows the arrow cursor in its scope: for a box during long work.
class PlainCursor
{
public:
    PlainCursor() { QGuiApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~PlainCursor() { QGuiApplication::restoreOverrideCursor(); }
    PlainCursor(const PlainCursor&) = delete;
    PlainCursor& operator=(const PlainCursor&) = delete;
};
