#include <QApplication>
#include <gtest/gtest.h>

#include <csignal>

// Drives the pages without a display.
int main(int argc, char* argv[])
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, SIG_DFL); // they may be ignored by the parent process
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
