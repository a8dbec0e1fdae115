#pragma once

#include "Base/MessageBox.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

/// Records the message boxes of a test. A box that the test hasn't taken at the end fails it, so none is overlooked.
/// Only one object may live at a time, since it replaces the handler of the process; the one before is restored at the
/// end.
class Boxes
{
public:
    Boxes() = default;
    ~Boxes()
    {
        setMessageBoxHandler(before);
        for (const CString& text : texts)
            ADD_FAILURE() << "a box that nobody expected: " << text;
    }
    Boxes(const Boxes&) = delete;
    Boxes& operator=(const Boxes&) = delete;

    /// Returns the boxes since the last call, oldest first.
    std::vector<CString> take() { return std::exchange(texts, {}); }

    CString details; ///< of the last box

private:
    std::vector<CString> texts;
    MessageBoxHandler before = setMessageBoxHandler([this](const CString& text, const CString& title) {
        EXPECT_EQ(title, "Typeforge Error");
        texts.push_back(text);
        details = queryMessageDetails();
    });
};
