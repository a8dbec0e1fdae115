#pragma once

#include <QCursor>
#include <QGuiApplication>

/// Shows the wait cursor while it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

/// Shows the arrow while it lives: for a box that comes up in the middle of long work.
class PlainCursor
{
public:
    PlainCursor() { QGuiApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~PlainCursor() { QGuiApplication::restoreOverrideCursor(); }
    PlainCursor(const PlainCursor&) = delete;
    PlainCursor& operator=(const PlainCursor&) = delete;
};
