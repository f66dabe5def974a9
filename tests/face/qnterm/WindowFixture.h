#pragma once

#include "AddressDialog.h"
#include "DeviceBrowser.h"
#include "LabelView.h"
#include "MainWindow.h"

#include "assembly/ControlAssembly.h"
#include "qt/QNCommWidget.h"
#include "testing/core/ScratchFolder.h"
#include "testing/stack/RecordingTrace.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QStatusBar>
#include <QTableView>
#include <QTest>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qncomm::testing {

using namespace qnterm;

inline constexpr int Patience = 20000; // ms that only a hang reaches

/// The whole window with a virtual printer behind it, in real time.
class WindowTest : public ::testing::Test {
  protected:
    ~WindowTest() override {
        if (mWindow && mWindow->isVisible()) CloseWindow();
    }

    void Open(const QString& port, const QString& watch = {}) {
        StartOptions options;
        options.port = port;
        options.watch = watch;
        options.labels = QString::fromStdString(mFolder.File("labels"));
        mWindow = std::make_unique<MainWindow>(
            options, std::make_shared<qncomm::FileSettings>(mFolder.File("settings.ini")), &mTrace);
        QObject::connect(mWindow.get(), &MainWindow::Closed, mWindow.get(), [this] {
            EXPECT_FALSE(PortOpen() || IsBusy()) << "the window has closed before its work is over";
        });
        mWindow->show();
        mWindow->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(mWindow.get()));
        EXPECT_TRUE(Eventually([&] {
            return mWindow->findChild<LabelView*>() != nullptr
                   && (IsBusy() || !port.isEmpty()
                       || mWindow->findChild<AddressDialog*>() != nullptr || PortOpen());
        }));
    }

    /// Waits until the window is of a printer of that model and has read its files.
    void AwaitPrinter(const QString& model = "R7G") {
        EXPECT_TRUE(Eventually([&] {
            return mWindow->windowTitle().startsWith(model) && !IsBusy()
                   && Table<DeviceBrowser>().model()->rowCount() > 0;
        })) << Status();
    }

    static bool Eventually(const std::function<bool()>& holds) {
        return QTest::qWaitFor(holds, Patience);
    }
    static void Settle() {
        for (int pass = 0; pass < 5; ++pass)
            QApplication::processEvents();
    }

    void CloseWindow() {
        mWindow->close();
        EXPECT_TRUE(Eventually([&] { return !mWindow->isVisible() && !IsBusy() && !PortOpen(); }));
    }

    qncomm::QNCommWidget& Control() { return *mWindow->findChild<qncomm::QNCommWidget*>(); }
    bool IsBusy() { return Control().isBusy(); }
    bool PortOpen() { return Control().assembly().Serial().PortOpen(); }

    template <class Part>
    Part& Find() {
        return *mWindow->findChild<Part*>();
    }
    template <class Part>
    QTableView& Table() {
        return *Find<Part>().template findChild<QTableView*>();
    }

    /// Everything that the status bar says.
    std::string Status() {
        QString text;
        for (const QLabel* label : mWindow->statusBar()->findChildren<QLabel*>())
            text += label->text() + " | ";
        return text.toStdString();
    }

    void ShowDock(const char* name) {
        auto* dock = mWindow->findChild<QDockWidget*>(name);
        dock->show();
        dock->raise();
        Settle();
    }

    void Type(const QString& text) {
        Control().setTerminalFocus();
        Settle();
        for (const QChar key : text)
            QTest::keyClick(QApplication::focusWidget(), key == '\n' ? '\r' : key.toLatin1());
    }

    void Trigger(const QString& text) {
        for (QAction* action : mWindow->actions())
            if (action->text().remove('&') == text) {
                EXPECT_TRUE(action->isEnabled()) << text.toStdString();
                action->trigger();
                return;
            }
        ADD_FAILURE() << "no action " << text.toStdString();
    }

    qncomm::testing::ScratchFolder mFolder;
    qncomm::testing::RecordingTrace mTrace;
    std::unique_ptr<MainWindow> mWindow;
};

} // namespace qncomm::testing
