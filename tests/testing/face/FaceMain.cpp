#include <gmock/gmock.h>

#include <QApplication>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    QApplication application(argc, argv);
    // A window that closes between two cases must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
