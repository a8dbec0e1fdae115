#pragma once

/// The help topic of a page.
struct HelpId
{
    int dialogId;
    int topic;
};

/// One row for each page. The last row has the dialog id 0 and the default topic, 0.
extern const HelpId helpIds[];
