// The least that a Qt program with a window is: what the start of qnterm is measured beside.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(1180, 760);
    window.show();
    return QApplication::exec();
}
