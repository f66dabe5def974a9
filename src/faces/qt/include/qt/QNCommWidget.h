#pragma once

#include "assembly/ControlAssembly.h"

#include <QFont>
#include <QString>
#include <QVariant>
#include <QWidget>

#include <functional>
#include <memory>
#include <string_view>

namespace qncomm {

class QNError;

/// A persisted property of the control as one of the widget: for form editors, and as functions
/// that read, set and reset it (setBackColor, resetBackColor). Default and meaning are those of the
/// row of that name in QNComm::Properties.
#define QN_PROPERTY(Type, Name, Getter)                                                            \
    Q_PROPERTY(Type Name READ Getter WRITE set##Name RESET reset##Name)                            \
  public:                                                                                          \
    Type Getter() const {                                                                          \
        return qvariant_cast<Type>(Value(#Name));                                                  \
    }                                                                                              \
    void set##Name(const Type& value) {                                                            \
        SetValue(#Name, QVariant::fromValue<Type>(value));                                         \
    }                                                                                              \
    void reset##Name() {                                                                           \
        ResetValue(#Name);                                                                         \
    }                                                                                              \
                                                                                                   \
  private:

/// The control as a widget that any Qt program places on a form: title bar, toolbar, terminal, grip
/// and the menu of the right mouse button.
///
/// At run time it reads its properties when it is first shown or control() is first called, and has
/// the port while it is shown. At design time it has properties and looks and touches no port. On a
/// form without a layout, Align docks it to an edge; in a dock window or a layout the grip changes
/// the height that it asks for.
///
/// The slots tell errors by the signal error; nobody connected to it, in a message box. The calls
/// of control() raise QNError, and OperationCancelled when the window is closed meanwhile. The
/// widget may be deleted from any of its signals. When its window closes, a running operation is
/// cancelled and the port closed.
class QNCommWidget : public QWidget {
    Q_OBJECT
    // The control's properties, one line each: its type here, its name, the function that reads it.
    QN_PROPERTY(int, BackColor, backColor)
    QN_PROPERTY(int, ForeColor, foreColor)
    Q_PROPERTY(bool Enabled READ isEnabled WRITE setEnabled RESET resetEnabled)
    QN_PROPERTY(int, BackStyle, backStyle)
    QN_PROPERTY(int, BorderStyle, borderStyle)
    QN_PROPERTY(int, Columns, columns)
    QN_PROPERTY(int, Rows, rows)
    QN_PROPERTY(QString, Caption, caption)
    QN_PROPERTY(bool, ToolbarVisible, toolbarVisible)
    QN_PROPERTY(int, ToolbarAlign, toolbarAlign)
    QN_PROPERTY(QFont, Font, terminalFont)
    /// Of the container: a DockAlign, where the control is docked on its form.
    Q_PROPERTY(int Align READ align WRITE setAlign)

  public:
    enum Mode { RunMode, DesignMode };

    /// At run time, at the defaults of everything.
    explicit QNCommWidget(QWidget* parent = nullptr);
    /// The trace, if there is one, outlives the application. Bindings that the options do not give
    /// come from the settings and then from the machine's devices, and may be virtual printers.
    explicit QNCommWidget(Mode mode, QWidget* parent = nullptr,
                          ControlAssembly::Options options = {});
    ~QNCommWidget() override;

    /// The control itself, with its whole surface.
    QNComm& control();
    /// What stands under it: the serial control with its bindings, the grid.
    ControlAssembly& assembly();

    /// Where settings are kept, handed over before the control is first used; by default the
    /// person's own settings file.
    void setRegSettings(std::shared_ptr<RegSettings> settings);
    /// Binds the current port to an address such as "/dev/ttyUSB0" or "sim:R7G", from the next
    /// opening on. Returns an empty text, or why not.
    QString setPortAddress(const QString& sAddress);

    /// Runs what uses the control as the slots do: an error goes to the signal error. False then,
    /// and when the operation was cancelled or the widget is gone.
    bool run(const std::function<void(QNComm& control)>& action);

    /// Whether an operation of the control is running.
    bool isBusy() const;
    const QString& helpFile() const;

    /// Where the control is docked on its form: a DockAlign.
    int align() const;

    /// Docks the control on its form; a number that is no DockAlign is DockNone.
    void setAlign(int iAlign);

    /// Enables the widget, which is its property's default.
    void resetEnabled();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    bool hasSelection() const;

  public slots:
    /// Searches for the printer on the current port.
    void connectPrinter();
    void showCommSettings();
    void clear();
    /// The whole screen's text, to the clipboard.
    void copy();
    /// What is marked in the terminal, to the clipboard; nothing when nothing is.
    void copySelection();
    void paste();
    void selectAll();
    void reboot();
    /// By its key, such as "F1".
    void pressToolbarKey(const QString& sKey);
    void captureToFile(const QString& sPath);
    void showSearch();
    void zoomIn();
    void zoomOut();
    void zoomReset();
    /// Ends a running operation.
    void cancelOperation();
    /// Closes the port for good.
    void tearDown();
    void setTerminalFocus();

  signals:
    /// The port was opened or closed. Handlers connect directly: the arguments go back.
    void portStateEvent(bool& bPortBusy);
    /// Progress of a long operation in percent, -1 for none; a handler that sets bCancel stops it.
    void statusEvent(QString& sStatusMsg, int iProgress, bool& bCancel);
    void error(int lNumber, const QString& sSource, const QString& sDescription);
    void propertyChanged(const QString& sName);
    /// The capture's file takes no more.
    void captureFailed(const QString& sPath, const QString& sReason);
    /// Something in the terminal is marked now, or nothing any more.
    void selectionChanged();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    class Surroundings;
    struct Parts;

    QVariant Value(std::string_view name) const;
    void SetValue(std::string_view name, const QVariant& value);
    void ResetValue(std::string_view name);
    void OnPropertyChanged(std::string_view name);
    void Load();
    void ConnectEvents();
    void ShowControl();
    void OnFocus(QWidget* now);
    void PlaceFrame();
    void Report(const QNError& known);

    std::unique_ptr<Parts> mParts;
};

} // namespace qncomm
