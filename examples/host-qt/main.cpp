// A host: a form with the printer's control on it, and what this program adds to both.
//
//   host-qt [ADDRESS]      a serial port such as /dev/ttyUSB0; without one, a virtual printer
//
// The form, host.ui, is made in Designer. It places the control, gives it its properties, and
// connects the menu to the control's slots, so that connecting, the port's settings and cancelling
// take no code here.

#include "ui_host.h"

#include <QApplication>
#include <QDebug>

using qncomm::QNComm;
using qncomm::QNCommWidget;

namespace {

// Asks the printer for its fonts. The control's whole surface is that of QNComm: texts are the
// printer's bytes, lists are collections of records.
void ReadFonts(QNComm& control, QComboBox& box) {
    const QString chosen = box.currentText();
    box.clear();
    for (const auto& font : *control.Fonts(true))
        box.addItem(QString::fromLatin1(font->Name));
    box.setCurrentText(chosen);
}

// Prints one label with a text in a font.
void PrintLabel(QNComm& control, const QString& text, const QString& font) {
    qncomm::PrintFontArgs label;
    label.sText = text.toLatin1().toStdString();
    label.sFontName = font.toLatin1().toStdString();
    label.iSize = 24;
    control.PrintFont(label);
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    Ui::Host form;
    form.setupUi(&window);

    // The control is a child of the form and goes with it. What it is connected to is said before
    // it is shown.
    QNCommWidget* printer = form.printer;
    const QString wrong = printer->setPortAddress(argc > 1 ? argv[1] : "sim:R7G");
    if (!wrong.isEmpty()) {
        qCritical().noquote() << wrong;
        return 1;
    }

    // run() tells what the control raises in a message box. The window stays alive meanwhile, so a
    // second operation is turned away here.
    const auto work = [&](const std::function<void(QNComm&)>& operation) {
        form.labelBox->setEnabled(false);
        printer->run(operation);
        form.labelBox->setEnabled(true);
    };
    QObject::connect(form.fonts, &QPushButton::clicked,
                     [&] { work([&](QNComm& control) { ReadFonts(control, *form.font); }); });
    QObject::connect(form.print, &QPushButton::clicked, [&] {
        work([&](QNComm& control) {
            PrintLabel(control, form.text->text(), form.font->currentText());
        });
    });

    // Progress of long operations. A handler may also set bCancel, which stops the operation.
    QObject::connect(printer, &QNCommWidget::statusEvent, &window,
                     [&](const QString& message) { form.status->showMessage(message); });
    QObject::connect(printer, &QNCommWidget::portStateEvent, &window, [&](bool open) {
        form.status->showMessage(open ? "The port is open." : "The port is closed.");
    });

    window.show();
    return QApplication::exec();
}
