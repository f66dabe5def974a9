#include "testing/face/Windows.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>

namespace qncomm::testing {

void ShowActive(QWidget& window) {
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

void OnModal(std::function<void(QWidget&)> act) {
    auto* watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, watch, [watch, act = std::move(act)] {
        const QPointer<QWidget> window = QApplication::activeModalWidget();
        if (!window || !window->isVisible()) return;
        watch->stop();
        watch->deleteLater();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        act(*window);
        if (!window || !window->isVisible()) return;
        ADD_FAILURE() << "the window stays open: " << window->windowTitle().toStdString();
        window->close();
        if (window) window->hide();
    });
    watch->start(0);
}

} // namespace qncomm::testing
