#include "qt/ToolbarView.h"

#include "qt/Charset.h"
#include "qt/Icons.h"

#include <QEvent>
#include <QPointer>
#include <QToolButton>

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

/// What a button does, in words, and whether a gap stands before it.
struct ButtonWords {
    std::string_view key;
    const char* name;
    bool gap = false;
};

constexpr std::array Words{
    ButtonWords{"CommSettings", QT_TRANSLATE_NOOP("ToolbarView", "Serial port setup")},
    ButtonWords{"Autoconnect", QT_TRANSLATE_NOOP("ToolbarView", "Find the printer")},
    ButtonWords{"Clear", QT_TRANSLATE_NOOP("ToolbarView", "Clear the screen"), true},
    ButtonWords{"Copy", QT_TRANSLATE_NOOP("ToolbarView", "Copy the screen")},
    ButtonWords{"Paste", QT_TRANSLATE_NOOP("ToolbarView", "Paste to the printer")},
    ButtonWords{"UploadA", QT_TRANSLATE_NOOP("ToolbarView", "Send a text file"), true},
    ButtonWords{"DownloadA", QT_TRANSLATE_NOOP("ToolbarView", "Receive text into a file")},
    ButtonWords{"UploadB", QT_TRANSLATE_NOOP("ToolbarView", "Send a binary file")},
    ButtonWords{"DownloadB", QT_TRANSLATE_NOOP("ToolbarView", "Receive a binary file")},
    ButtonWords{"FunctionkeysSetup", QT_TRANSLATE_NOOP("ToolbarView", "Function keys setup"), true},
};

bool IsFunctionKey(std::string_view key) {
    return key.size() == 2 && key.front() == 'F';
}

QString NameOf(std::string_view key) {
    const auto found = std::ranges::find(Words, key, &ButtonWords::key);
    return found != Words.end() ? ToolbarView::tr(found->name) : FromHost(key);
}

bool HasGapBefore(std::string_view key) {
    const auto found = std::ranges::find(Words, key, &ButtonWords::key);
    return found != Words.end() && found->gap;
}

/// A tip's lines: what the button does with the keys for it, then what the model adds.
QStringList TipOf(const ToolbarButton& button) {
    QStringList lines(NameOf(button.key));
    if (IsFunctionKey(button.key))
        lines.first() += QStringLiteral(" (%1)").arg(
            QKeySequence(FromHost("Ctrl+Shift+" + button.key)).toString(QKeySequence::NativeText));
    if (!button.toolTip.empty()) lines << FromEither(button.toolTip);
    return lines;
}

/// The toolkit may take a tip for markup, but a macro's "<CR>" is plain text.
QString AsMarkup(const QStringList& lines) {
    return QStringLiteral("<p style='white-space:pre'>%1</p>")
        .arg(lines.join(u'\n').toHtmlEscaped());
}

} // namespace

ToolbarView::ToolbarView(ToolbarModel& model, const ActionGuard& guard, QWidget* parent)
    : QToolBar(parent), mModel(model), mGuard(guard) {
    setAccessibleName(tr("Printer toolbar"));
    setContextMenuPolicy(Qt::PreventContextMenu);
    for (const ToolbarButton& button : model.Buttons())
        AddButton(button);
    ShowPictures();
    mChanges = model.Changed.Connect([this] { Show(); });
    Show();
}

void ToolbarView::AddButton(const ToolbarButton& button) {
    if (HasGapBefore(button.key)) addSeparator();
    QAction* action = addAction(NameOf(button.key));
    action->setObjectName(FromHost(button.key));
    connect(action, &QAction::triggered, this, [this, key = button.key] { Click(key); });
    mActions[button.key] = action;
    QToolButton* shown = ButtonOf(button.key);
    shown->setObjectName(FromHost(button.key));
    mRow.Add(*shown);
}

QToolButton* ToolbarView::ButtonOf(const std::string& sKey) const {
    const auto found = mActions.find(sKey);
    return found != mActions.end() ? qobject_cast<QToolButton*>(widgetForAction(found->second))
                                   : nullptr;
}

void ToolbarView::Click(const std::string& key) {
    const QPointer<ToolbarView> self(this);
    ToolbarModel& model = mModel;
    const std::string clicked = key; // the view may go meanwhile
    mGuard.Run([&] { model.Click(clicked); });
    if (self) Show();
}

void ToolbarView::Show() {
    setEnabled(mModel.Enabled());
    if (mModel.Visible() == isHidden()) setVisible(mModel.Visible());
    for (const ToolbarButton& button : mModel.Buttons()) {
        QAction& action = *mActions.at(button.key);
        action.setCheckable(button.style == ToolbarButtonStyle::Toggle);
        action.setChecked(button.pressed);
        const QStringList tip = TipOf(button);
        action.setToolTip(AsMarkup(tip));
        ButtonOf(button.key)->setAccessibleDescription(tip.join(u'\n'));
    }
}

void ToolbarView::ShowPictures() {
    for (const auto& [key, action] : mActions)
        action->setIcon(LineIcon(FromHost(key), palette()));
}

void ToolbarView::changeEvent(QEvent* event) {
    QToolBar::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) ShowPictures();
}

} // namespace qncomm
