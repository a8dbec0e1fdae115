#include "wizard/Desk.h"

namespace {

TEST(Flow, StartsOnTheWelcomePage)
{
    Desk desk;
    EXPECT_EQ(desk.page(), IDD_FIRST);
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
    desk.click("back");
    EXPECT_EQ(desk.page(), IDD_FIRST);
}

} // namespace
