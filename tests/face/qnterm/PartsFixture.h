#pragma once

#include "link/clsDataLink.h"
#include "testing/stack/AssembledFixture.h"

#include "Operations.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QString>
#include <QTest>
#include <QWidget>

#include <string>
#include <utility>
#include <vector>

namespace qncomm::testing {

using namespace qnterm;

/// The parts of the window over a control with a virtual printer at port 1, on a driven clock.
class PartsFixture : public qncomm::testing::AssembledFixture {
  protected:
    PartsFixture() {
        QObject::connect(&mOperations, &Operations::Failed, &mOperations,
                         [this](const QString& title, const qncomm::QNError& error) {
                             mFailures.push_back(title.toStdString() + ": " + error.Description());
                         });
        QObject::connect(&mOperations, &Operations::Done, &mOperations,
                         [this](const QString& title, bool cancelled) {
                             mDone.push_back(title.toStdString()
                                             + (cancelled ? ": cancelled" : ""));
                         });
    }

    /// The visible dialog of that type over the widgets.
    template <class Dialog>
    static Dialog* OpenDialog() {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<Dialog*>(window); dialog && dialog->isVisible())
                return dialog;
        ADD_FAILURE() << "no such dialog is open";
        return nullptr;
    }

    /// Lets queued events be delivered.
    static void Settle() {
        for (int pass = 0; pass < 5; ++pass)
            QApplication::processEvents();
    }

    /// Presses the button of the question that is open.
    static void Agree() {
        auto* box = OpenDialog<QMessageBox>();
        ASSERT_NE(box, nullptr);
        for (QAbstractButton* button : box->buttons())
            if (box->buttonRole(button) == QMessageBox::AcceptRole)
                QTest::mouseClick(button, Qt::LeftButton);
        Settle();
    }

    /// The control works on that port from now on. At port 2 stands another virtual printer of the
    /// same model, with the same files.
    void ChangePort(const char* port = "2") {
        EXPECT_EQ(mAssembly->Bindings().Give(2, "sim:R7G?baud=9600"), "");
        Control().Link().SetCommport(port);
        Control().Link().ApplyCommSettings();
    }

    std::vector<std::string> mFailures;
    std::vector<std::string> mDone;
    Operations mOperations{Control(), {.any = {}, .cancel = [this] { ++mCancelWaits; }}};
    int mCancelWaits = 0;
};

} // namespace qncomm::testing
