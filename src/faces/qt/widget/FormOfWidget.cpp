#include "FormOfWidget.h"

#include <QDockWidget>
#include <QLayout>
#include <QMainWindow>
#include <QMenuBar>
#include <QPointer>
#include <QScreen>
#include <QStatusBar>

#include <algorithm>
#include <string_view>

namespace qncomm {
namespace {

QDockWidget* DockWindowOf(const QWidget& widget) {
    for (QWidget* parent = widget.parentWidget(); parent != nullptr;
         parent = parent->parentWidget())
        if (auto* dock = qobject_cast<QDockWidget*>(parent)) return dock;
    return nullptr;
}

QMainWindow* MainWindowOf(const QDockWidget& dock) {
    return dock.isFloating() ? nullptr : qobject_cast<QMainWindow*>(dock.parentWidget());
}

bool Holds(const QLayout& layout, const QWidget& widget) {
    for (int i = 0; i < layout.count(); ++i) {
        const QLayoutItem* item = layout.itemAt(i);
        if (item->widget() == &widget) return true;
        auto* nested = const_cast<QLayoutItem*>(item)->layout();
        if (nested != nullptr && Holds(*nested, widget)) return true;
    }
    return false;
}

/// The status bars that stand at the bottom of a form without a layout.
std::vector<QStatusBar*> FreeStatusBars(const QWidget& form) {
    std::vector<QStatusBar*> bars;
    for (QStatusBar* bar : form.findChildren<QStatusBar*>(Qt::FindDirectChildrenOnly))
        if (bar->isVisibleTo(&form) && !IsLaidOut(*bar)) bars.push_back(bar);
    return bars;
}

int HeightOf(const std::vector<QStatusBar*>& bars) {
    int height = 0;
    for (const QStatusBar* bar : bars)
        height += bar->height();
    return height;
}

int InnerHeight(const QMainWindow& main) {
    int height = main.height();
    for (const QWidget* bar :
         {static_cast<QWidget*>(main.findChild<QMenuBar*>()),
          static_cast<QWidget*>(main.findChild<QStatusBar*>({}, Qt::FindDirectChildrenOnly))})
        if (bar != nullptr && bar->isVisible()) height -= bar->height();
    return height;
}

/// A widget of the form as the control sees it.
class FormControl final : public ContainerControl {
  public:
    explicit FormControl(QWidget* widget) : mWidget(widget) {}

    /// The toolkit's letter is no part of the kind.
    std::string TypeName() const override {
        if (!mWidget) return {};
        const std::string_view name = mWidget->metaObject()->className();
        return std::string(name.starts_with('Q') ? name.substr(1) : name);
    }

    /// Never beyond the lower edge of the form; a layout keeps the widget where it is.
    void SetTop(std::int32_t lTop) override {
        if (!mWidget || mWidget->isWindow() || IsLaidOut(*mWidget)) return;
        const int lowest = mWidget->parentWidget()->height() - mWidget->height();
        mWidget->move(mWidget->x(), std::min(lTop, lowest));
        mWidget->raise();
    }

  private:
    QPointer<QWidget> mWidget;
};

} // namespace

bool IsLaidOut(const QWidget& widget) {
    const QWidget* parent = widget.parentWidget();
    if (parent == nullptr || widget.isWindow()) return false;
    return parent->layout() != nullptr && Holds(*parent->layout(), widget);
}

int FormHeight(const QWidget& widget) {
    if (const QDockWidget* dock = DockWindowOf(widget))
        if (const QMainWindow* main = MainWindowOf(*dock)) return InnerHeight(*main);
    const QWidget* form = widget.parentWidget();
    if (form == nullptr || widget.isWindow()) return widget.screen()->availableSize().height();
    return form->height() - HeightOf(FreeStatusBars(*form));
}

bool SetHeightOnForm(QWidget& widget, DockAlign align, int height) {
    if (QDockWidget* dock = DockWindowOf(widget)) {
        if (QMainWindow* main = MainWindowOf(*dock))
            main->resizeDocks({dock}, {dock->height() + height - widget.height()}, Qt::Vertical);
        else
            dock->resize(dock->width(), dock->height() + height - widget.height());
        return true;
    }
    if (IsLaidOut(widget)) return false;
    widget.resize(widget.width(), height);
    DockOnForm(widget, align);
    return true;
}

void DockOnForm(QWidget& widget, DockAlign align) {
    const QWidget* form = widget.parentWidget();
    if (form == nullptr || widget.isWindow() || align == DockNone || IsLaidOut(widget)
        || DockWindowOf(widget) != nullptr)
        return;
    int bottom = form->height();
    for (QStatusBar* bar : FreeStatusBars(*form)) {
        bar->setGeometry(0, bottom - bar->height(), form->width(), bar->height());
        bottom -= bar->height();
    }
    const int height = std::min(widget.height(), std::max(bottom, 0));
    widget.setGeometry(0, align == DockBottom ? bottom - height : 0, form->width(), height);
}

std::vector<std::shared_ptr<ContainerControl>> ControlsOfForm(const QWidget& widget) {
    std::vector<std::shared_ptr<ContainerControl>> controls;
    for (QWidget* each : widget.window()->findChildren<QWidget*>())
        controls.push_back(std::make_shared<FormControl>(each));
    return controls;
}

} // namespace qncomm
