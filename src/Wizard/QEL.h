#pragma once

/// Which topic of the help explains a page.
struct HelpId
{
    int dialogId;
    int topic;
};

/// One row for each page, ended by a row whose dialog id is 0; that row's topic, 0, is the default topic.
extern const HelpId helpIds[];
