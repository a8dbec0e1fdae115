#include "Wizard/Windows/HelpWindow.h"

#include <QImage>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>
#include <gtest/gtest.h>

#include <tuple>

namespace {

class Help : public testing::Test
{
protected:
    QString title() { return window.windowTitle().remove(" - Typeforge help"); }
    bool enabled(const char* button) { return window.findChild<QPushButton*>(button)->isEnabled(); }
    void press(int key) { QTest::keyClick(&window, static_cast<Qt::Key>(key), Qt::AltModifier); }

    HelpWindow window;
};

TEST_F(Help, HasAPageForEachTopic)
{
    const QString titles = "Typeforge help;Welcome;What was created;Choosing a data source;Choosing tables;"
                           "The generated types;Finishing;Connecting to the broker;Choosing where the types go;"
                           "Choosing the output file;Choosing the input file;Choosing an importer;Typeforge help";
    for (int topic = 0; topic < 13; ++topic) {
        window.showTopic(topic);
        EXPECT_EQ(title(), titles.section(';', topic, topic)) << topic;
        EXPECT_GT(window.findChild<QTextBrowser*>()->toPlainText().size(), 300);
    }
}

TEST_F(Help, IsWalkedWithTheKeyboard)
{
    window.showTopic(10);
    EXPECT_FALSE(enabled("back"));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    press(Qt::Key_Home);
    EXPECT_EQ(title(), "Typeforge help");
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab); // to the first link
    QTest::keyClick(window.focusWidget(), Qt::Key_Return);
    EXPECT_EQ(title(), "Welcome");
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    EXPECT_EQ(title(), "Choosing the input file");
    press(Qt::Key_Right);
    EXPECT_EQ(title(), "Typeforge help");
    EXPECT_TRUE(enabled("forward"));
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST(Pictures, HaveTheirSizesAndDepths)
{
    const int pictures[][4] = {
        {1000, 535, 73, 32}, {1001, 535, 99, 8}, {1002, 539, 407, 32}, {1003, 539, 407, 8}, {1027, 32, 32, 32}};
    for (const auto& [id, width, height, depth] : pictures) {
        const QImage image(QString(":/%1").arg(id));
        EXPECT_EQ(std::tuple(image.width(), image.height(), image.depth()), std::tuple(width, height, depth)) << id;
    }
}

} // namespace
