// The widget on a form: where its pieces stand, its properties, its grip.

#include "SizerGrip.h"
#include "qt/QtPropertyBag.h"
#include "qt/TitleBar.h"
#include "qt/ToolbarView.h"
#include "testing/face/ControlRig.h"
#include "testing/face/Pictures.h"
#include "testing/face/Windows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QDockWidget>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTextEdit>
#include <QVBoxLayout>

namespace qncomm::testing {
namespace {

/// The pieces of a control's frame.
struct Frame {
    explicit Frame(const QNCommWidget& widget)
        : title(*widget.findChild<TitleBar*>()),
          toolbar(*widget.findChild<ToolbarView*>()),
          terminal(*widget.findChild<QAbstractScrollArea*>()),
          grip(*widget.findChild<SizerGrip*>()) {}

    TitleBar& title;
    ToolbarView& toolbar;
    QAbstractScrollArea& terminal;
    SizerGrip& grip;
};

void DragGrip(SizerGrip& grip, int y) {
    QTest::mousePress(&grip, Qt::LeftButton, {}, QPoint(20, 0));
    QTest::mouseRelease(&grip, Qt::LeftButton, {}, QPoint(20, y));
}

TEST(WidgetFrame, TitleToolbarAndTerminalFillTheWidget) {
    ControlRig rig;
    rig.Show();
    const Frame frame(rig.Widget());
    EXPECT_EQ(frame.toolbar.y(), frame.title.height());
    EXPECT_EQ(frame.terminal.y(), frame.title.height() + frame.toolbar.height());
    EXPECT_EQ(frame.terminal.geometry().bottom(), rig.Widget().rect().bottom());
    EXPECT_EQ(frame.terminal.width(), rig.Widget().width());
}

TEST(WidgetFrame, AToolbarAtTheBottomAndAHiddenOneGiveTheTerminalTheirPlace) {
    ControlRig rig;
    rig.Show();
    const Frame frame(rig.Widget());
    rig.Widget().setToolbarAlign(ToolbarBottom);
    EXPECT_EQ(frame.terminal.y(), frame.title.height());
    EXPECT_EQ(frame.toolbar.geometry().bottom(), rig.Widget().rect().bottom());
    SavePicture(rig.window, QStringLiteral("control-toolbar-bottom"));
    rig.Widget().setToolbarVisible(false);
    EXPECT_FALSE(frame.toolbar.isVisible());
    EXPECT_EQ(frame.terminal.geometry().bottom(), rig.Widget().rect().bottom());
}

TEST(WidgetFrame, ABorderIsDrawnAround) {
    ControlRig rig;
    rig.Show();
    const Frame frame(rig.Widget());
    rig.Widget().setBorderStyle(1);
    EXPECT_EQ(frame.title.pos(), QPoint(1, 1));
    EXPECT_EQ(frame.terminal.width(), rig.Widget().width() - 2);
}

TEST(WidgetFrame, TheTitleBarShowsWhetherKeysComeHere) {
    ControlRig rig;
    auto* other = new QTextEdit;
    auto* dock = new QDockWidget;
    dock->setWidget(other);
    rig.window.addDockWidget(Qt::TopDockWidgetArea, dock);
    rig.Show();
    QNComm& control = rig.Widget().control();
    EXPECT_EQ(control.lblCaption.BackColor(), ActiveTitleColor);
    other->setFocus();
    EXPECT_EQ(control.lblCaption.BackColor(), InactiveTitleColor);
    SavePicture(rig.window, QStringLiteral("control-inactive"));
}

TEST(WidgetFrame, OnePixelOfHeightIsEnough) {
    ControlRig rig;
    rig.Show();
    for (const QSize size : {QSize(900, 1), QSize(1, 1), QSize(30, 30), QSize(900, 420)}) {
        rig.Widget().resize(size);
        rig.Receive("text\r\n");
    }
    EXPECT_GT(Frame(rig.Widget()).terminal.height(), 200);
}

// -- Docked on a form

TEST(WidgetDocked, OnAPlainFormItStandsAtTheBottomAboveTheStatusBar) {
    QWidget form;
    form.resize(700, 500);
    auto* bar = new QStatusBar(&form);
    bar->resize(700, 24);
    auto* widget = new QNCommWidget(QNCommWidget::DesignMode, &form);
    widget->resize(100, 220);
    widget->setAlign(DockBottom);
    ShowActive(form);
    EXPECT_EQ(widget->geometry(), QRect(0, 500 - 24 - 220, 700, 220));
    EXPECT_EQ(bar->geometry().bottom(), form.rect().bottom());
    form.resize(600, 400);
    EXPECT_TRUE(
        WaitUntil([&] { return widget->geometry() == QRect(0, 400 - 24 - 220, 600, 220); }));
}

TEST(WidgetDocked, TheGripMakesItHigherAndLowerWithinTheForm) {
    QWidget form;
    form.resize(700, 500);
    auto* bar = new QStatusBar(&form);
    bar->resize(700, 24);
    auto* widget = new QNCommWidget(QNCommWidget::DesignMode, &form);
    widget->resize(700, 220);
    widget->setAlign(DockBottom);
    ShowActive(form);
    const Frame frame(*widget);
    DragGrip(frame.grip, -60);
    EXPECT_EQ(widget->height(), 280);
    EXPECT_EQ(widget->geometry().bottom(), 500 - 24 - 1);
    bar->move(0, 10); // where it does not belong
    DragGrip(frame.grip, 50);
    EXPECT_EQ(widget->height(), 230);
    EXPECT_EQ(bar->geometry().bottom(), form.rect().bottom());
    DragGrip(frame.grip, -5000);
    EXPECT_EQ(widget->height(), 500 - 24);
    DragGrip(frame.grip, 5000);
    EXPECT_EQ(frame.terminal.height(), 16); // one row of text is left
}

TEST(WidgetDocked, InALayoutTheGripChangesWhatItAsksFor) {
    QWidget form;
    auto* layout = new QVBoxLayout(&form);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QTextEdit, 1);
    auto* widget = new QNCommWidget(QNCommWidget::DesignMode, &form);
    layout->addWidget(widget);
    form.resize(700, 600);
    ShowActive(form);
    const int height = widget->height();
    DragGrip(Frame(*widget).grip, -40);
    EXPECT_TRUE(WaitUntil([&] { return widget->height() == height + 40; })) << widget->height();
}

TEST(WidgetDocked, InALayoutItHasAllTheRoomUntilTheGripIsDragged) {
    QWidget form;
    auto* layout = new QVBoxLayout(&form);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* above = new QTextEdit;
    above->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    layout->addWidget(above);
    auto* widget = new QNCommWidget(QNCommWidget::DesignMode, &form);
    layout->addWidget(widget);
    form.resize(700, 700);
    ShowActive(form);
    EXPECT_EQ(above->height(), above->sizeHint().height());
    const int height = widget->height();
    above->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    DragGrip(Frame(*widget).grip, 250);
    EXPECT_TRUE(WaitUntil([&] { return widget->height() == height - 250; })) << widget->height();
}

TEST(WidgetDocked, InADockWindowTheGripMovesItsBorder) {
    QMainWindow main;
    main.setCentralWidget(new QTextEdit);
    main.statusBar()->showMessage(QStringLiteral("Ready"));
    auto* dock = new QDockWidget(&main);
    auto* widget = new QNCommWidget(QNCommWidget::DesignMode);
    dock->setWidget(widget);
    main.addDockWidget(Qt::BottomDockWidgetArea, dock);
    main.resize(700, 700);
    ShowActive(main);
    const int height = widget->height();
    DragGrip(Frame(*widget).grip, -40);
    EXPECT_TRUE(WaitUntil([&] { return widget->height() == height + 40; })) << widget->height();
    EXPECT_EQ(main.statusBar()->geometry().bottom(), main.rect().bottom());
    SavePicture(main, QStringLiteral("control-docked"));
}

// -- Properties

TEST(WidgetProperties, AFreshOneHasTheDefaults) {
    const QNCommWidget widget;
    EXPECT_EQ(widget.property("BackColor").toInt(), 15);
    EXPECT_EQ(widget.property("ForeColor").toInt(), 0);
    EXPECT_TRUE(widget.property("Enabled").toBool());
    EXPECT_EQ(widget.property("BackStyle").toInt(), 1);
    EXPECT_EQ(widget.property("BorderStyle").toInt(), 0);
    EXPECT_EQ(widget.property("Columns").toInt(), 300);
    EXPECT_EQ(widget.property("Rows").toInt(), 300);
    EXPECT_EQ(widget.property("Caption").toString(), QStringLiteral("Terminal"));
    EXPECT_TRUE(widget.property("ToolbarVisible").toBool());
    EXPECT_EQ(widget.property("ToolbarAlign").toInt(), 1);
    EXPECT_EQ(widget.property("Font").value<QFont>().family(), QStringLiteral("Courier New"));
}

QMetaType ToolkitType(PropertyType type) {
    switch (type) {
    case PropertyType::Boolean:
        return QMetaType::fromType<bool>();
    case PropertyType::Integer:
    case PropertyType::Long:
        return QMetaType::fromType<int>();
    case PropertyType::Text:
        return QMetaType::fromType<QString>();
    case PropertyType::Font:
        break;
    }
    return QMetaType::fromType<QFont>();
}

TEST(WidgetProperties, AreThoseOfTheControlWithTheirTypesAndDefaults) {
    const QNCommWidget widget;
    const QMetaObject& meta = QNCommWidget::staticMetaObject;
    for (const ControlProperty& property : QNComm::Properties()) {
        const std::string name(property.name);
        const QMetaProperty shown = meta.property(meta.indexOfProperty(name.c_str()));
        ASSERT_TRUE(shown.isValid()) << name;
        EXPECT_EQ(shown.metaType(), ToolkitType(property.type)) << name;
        EXPECT_TRUE(shown.isWritable() && shown.isResettable()) << name;
        EXPECT_EQ(shown.read(&widget), QVariantOf(property.byDefault)) << name;
    }
    const auto own = static_cast<std::size_t>(meta.propertyCount() - meta.propertyOffset());
    EXPECT_EQ(own, QNComm::Properties().size() + 1) << "and Align, which is the form's";
}

TEST(WidgetProperties, AFreshOneOnAFormUnderDesignIsDockedAtTheBottom) {
    const QNCommWidget widget(QNCommWidget::DesignMode);
    EXPECT_EQ(widget.property("Align").toInt(), DockBottom);
    EXPECT_EQ(widget.property("Font").value<QFont>().family(), QStringLiteral("Courier"));
}

/// Sets every property to something else than its default.
void SetAll(QNCommWidget& widget) {
    widget.setProperty("BackColor", 0x102030);
    widget.setProperty("ForeColor", 0xFFFFFF);
    widget.setProperty("BackStyle", 0);
    widget.setProperty("BorderStyle", 1);
    widget.setProperty("Columns", 80);
    widget.setProperty("Rows", 25);
    widget.setProperty("Caption", QStringLiteral("Printer 7"));
    widget.setProperty("ToolbarVisible", false);
    widget.setProperty("ToolbarAlign", 2);
}

void ExpectAll(const QNCommWidget& widget) {
    EXPECT_EQ(widget.backColor(), 0x102030);
    EXPECT_EQ(widget.foreColor(), 0xFFFFFF);
    EXPECT_EQ(widget.backStyle(), 0);
    EXPECT_EQ(widget.borderStyle(), 1);
    EXPECT_EQ(widget.columns(), 80);
    EXPECT_EQ(widget.rows(), 25);
    EXPECT_EQ(widget.caption(), QStringLiteral("Printer 7"));
    EXPECT_FALSE(widget.toolbarVisible());
    EXPECT_EQ(widget.toolbarAlign(), 2);
}

TEST(WidgetProperties, WhatIsSetUnderDesignIsKept) {
    QNCommWidget widget(QNCommWidget::DesignMode);
    SetAll(widget);
    ExpectAll(widget);
    EXPECT_EQ(widget.control().lblCaption.Caption(), "Printer 7");
    for (const char* name :
         {"BackColor", "BackStyle", "Columns", "Rows", "Caption", "ToolbarAlign"})
        widget.metaObject()->property(widget.metaObject()->indexOfProperty(name)).reset(&widget);
    EXPECT_EQ(widget.backColor(), 15);
    EXPECT_EQ(widget.columns(), 300);
    EXPECT_EQ(widget.caption(), QStringLiteral("Terminal"));
}

TEST(WidgetProperties, WhatAFormHasSetIsReadAtRunTime) {
    ControlRig rig;
    SetAll(rig.Widget());
    ExpectAll(rig.Widget());
    rig.Show();
    EXPECT_EQ(rig.Grid().Appearance().backColor, 0x102030);
    EXPECT_FALSE(Frame(rig.Widget()).toolbar.isVisible());
    EXPECT_EQ(rig.Widget().control().lblCaption.Caption(), "Printer 7");
    EXPECT_EQ(rig.Grid().Columns(), 300); // whatever was chosen
    EXPECT_EQ(rig.Grid().Rows(), 300);
}

TEST(WidgetProperties, AChangeOfTheControlIsTold) {
    ControlRig rig;
    rig.Show();
    QSignalSpy changes(&rig.Widget(), &QNCommWidget::propertyChanged);
    rig.Widget().control().SetEnabled(false);
    EXPECT_FALSE(rig.Widget().isEnabled());
    rig.Widget().setEnabled(true);
    EXPECT_TRUE(rig.Widget().control().Enabled());
    ASSERT_EQ(changes.size(), 2);
    EXPECT_EQ(changes.front().front().toString(), QStringLiteral("Enabled"));
}

TEST(WidgetProperties, UnderDesignNoPortIsTouched) {
    QNCommWidget widget(QNCommWidget::DesignMode);
    widget.resize(640, 300);
    ShowActive(widget);
    EXPECT_FALSE(widget.assembly().Serial().PortOpen());
    EXPECT_EQ(widget.assembly().Grid().Appearance().displayState, 5);
    SavePicture(widget, QStringLiteral("control-design"));
}

} // namespace
} // namespace qncomm::testing
