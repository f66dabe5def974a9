// A program of another project: the control as a widget, on the virtual printer.

#include <qt/QNCommWidget.h>

#include <QApplication>

#include <iostream>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    qncomm::QNCommWidget printer;
    printer.setPortAddress("sim:R7A");
    printer.show();
    QObject::connect(&printer, &qncomm::QNCommWidget::error,
                     [](int, const QString&, const QString& text) { qWarning() << text; });
    const bool done =
        printer.run([](qncomm::QNComm& control) { std::cout << control.PrinterType() << '\n'; });
    return done ? 0 : 1;
}
