#include "testing/face/ControlRig.h"

#include "testing/face/Windows.h"

#include <gtest/gtest.h>

#include <QAbstractScrollArea>

namespace qncomm::testing {
namespace {

std::shared_ptr<MemorySettings> SettingsForRig() {
    auto store = std::make_shared<MemorySettings>();
    store->WriteValues({{"Settings", "Baudrate", "57600"},
                        {"Settings", "Parity", "None"},
                        {"Settings", "Databits", "8"},
                        {"Settings", "Stopbits", "1"}});
    return store;
}

} // namespace

ControlRig::ControlRig(const QString& address) : settings(SettingsForRig()) {
    ControlAssembly::Options options;
    options.trace = &trace;
    mWidget = new QNCommWidget(QNCommWidget::RunMode, &window, std::move(options));
    mWidget->setRegSettings(settings);
    EXPECT_EQ(mWidget->setPortAddress(address), QString());
    QObject::connect(mWidget, &QNCommWidget::error, mWidget,
                     [this](int, const QString&, const QString& text) { errors.push_back(text); });
    window.setCentralWidget(mWidget);
}

ControlRig::~ControlRig() {
    DeleteWidget();
}

void ControlRig::DeleteWidget() {
    delete mWidget.data();
}

void ControlRig::Show(QSize size) {
    window.resize(size);
    ShowActive(window);
    EXPECT_TRUE(WaitUntil([this] { return mWidget->assembly().Serial().PortOpen(); }));
    EXPECT_TRUE(WaitUntil([this] { return View().hasFocus(); }));
}

QWidget& ControlRig::View() {
    return *mWidget->findChild<QAbstractScrollArea*>();
}

void ControlRig::Type(const QString& text) {
    QTest::keyClicks(&View(), text);
}

void ControlRig::Press(Qt::Key key, Qt::KeyboardModifiers held) {
    QTest::keyClick(&View(), key, held);
}

void ControlRig::Receive(std::string_view text) {
    mWidget->assembly().Viewport().Show(text);
    EXPECT_TRUE(WaitUntil([this] { return !Grid().HasDamage(); }));
    QTest::qWait(0);
}

bool ControlRig::WaitForScreen(std::string_view text) {
    return WaitUntil([&] { return Grid().ScreenText().find(text) != std::string::npos; });
}

} // namespace qncomm::testing
