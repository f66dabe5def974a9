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
/// The slots report errors through the signal error, or in a message box when nothing is connected
/// to it. The calls of control() raise QNError, and OperationCancelled when the window is closed
/// meanwhile. The widget may be deleted from any of its signals. When its window closes, a running
/// operation is cancelled and the port closed.
class QNCommWidget : public QWidget {
    Q_OBJECT
    // The control's properties, one line each: its type here, its name, the function that reads it.
    /// The terminal's background: 0x00BBGGRR, or negative for a colour of the desktop.
    QN_PROPERTY(int, BackColor, backColor)
    /// The terminal's text: 0x00BBGGRR, or negative for a colour of the desktop.
    QN_PROPERTY(int, ForeColor, foreColor)
    /// Whether the control takes keys and clicks.
    Q_PROPERTY(bool Enabled READ isEnabled WRITE setEnabled RESET resetEnabled)
    /// 0 leaves the background to what is behind the control, any other number fills it.
    QN_PROPERTY(int, BackStyle, backStyle)
    /// 0 draws no border, any other number a line.
    QN_PROPERTY(int, BorderStyle, borderStyle)
    /// Characters across at design time; at run time the grid is always 300 wide.
    QN_PROPERTY(int, Columns, columns)
    /// Characters down at design time; at run time the grid is always 300 high.
    QN_PROPERTY(int, Rows, rows)
    /// The text of the title bar.
    QN_PROPERTY(QString, Caption, caption)
    /// Whether the toolbar is shown.
    QN_PROPERTY(bool, ToolbarVisible, toolbarVisible)
    /// A ToolbarAlignValue: at which edge the toolbar stands.
    QN_PROPERTY(int, ToolbarAlign, toolbarAlign)
    /// The terminal's font; one that was chosen at design time is kept, but not used at run time.
    QN_PROPERTY(QFont, Font, terminalFont)
    /// Of the container: a DockAlign, where the control is docked on its form.
    Q_PROPERTY(int Align READ align WRITE setAlign)

  public:
    /// What the widget is for.
    enum Mode {
        RunMode,   ///< in a program: it has the port while it is shown
        DesignMode ///< on a form that is being drawn: properties and looks, no port
    };

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
    /// user's own settings file.
    void setRegSettings(std::shared_ptr<RegSettings> settings);
    /// Binds the current port to an address such as "/dev/ttyUSB0" or "sim:R7G", from the next
    /// opening on. Returns an empty text, or why not.
    QString setPortAddress(const QString& sAddress);

    /// Runs what uses the control as the slots do: an error goes to the signal error. False then,
    /// and when the operation was cancelled or the widget is gone.
    bool run(const std::function<void(QNComm& control)>& action);

    /// Whether an operation of the control is running.
    bool isBusy() const;
    /// The path of the help file that was set through the control; empty when there is none.
    const QString& helpFile() const;

    /// Where the control is docked on its form: a DockAlign.
    int align() const;

    /// Docks the control on its form; a number that is no DockAlign is DockNone.
    void setAlign(int iAlign);

    /// Enables the widget, which is its property's default.
    void resetEnabled();

    /// The grid at its font with the frame around it, or the height that the grip asked for.
    QSize sizeHint() const override;
    /// Nothing: a form may make the control as small as it likes.
    QSize minimumSizeHint() const override;

    /// Whether something is marked in the terminal.
    bool hasSelection() const;

  public slots:
    /// Searches for the printer on the current port.
    void connectPrinter();
    /// Shows the settings form and returns when it has closed.
    void showCommSettings();
    /// Empties the terminal's screen.
    void clear();
    /// Copies the whole screen's text to the clipboard.
    void copy();
    /// Copies what is marked in the terminal to the clipboard; does nothing when nothing is.
    void copySelection();
    /// Sends the clipboard's text to the printer.
    void paste();
    /// Marks all of the terminal's text.
    void selectAll();
    /// Restarts the printer; returns when it answers again.
    void reboot();
    /// Holds the line in the break condition for a moment, whatever runs.
    void sendBreak();
    /// Sends the character 0x03, whatever runs.
    void sendCtrlC();
    /// Ends the printer's program, by that character or by a break, and proves that the printer is
    /// at its prompt.
    void stopProgram();
    /// Presses a button of the toolbar by its key, such as "F1".
    void pressToolbarKey(const QString& sKey);
    /// Appends what the terminal shows from now on to the file.
    void captureToFile(const QString& sPath);
    /// Opens the bar that searches the terminal's text.
    void showSearch();
    /// Makes the terminal's characters larger by a step, without changing the property Font.
    void zoomIn();
    /// Makes them smaller by a step.
    void zoomOut();
    /// Gives them the size of the property Font again.
    void zoomReset();
    /// Ends a running operation.
    void cancelOperation();
    /// Closes the port for good.
    void tearDown();
    /// Gives the terminal the keyboard.
    void setTerminalFocus();

  signals:
    /// The port was opened or closed. Handlers connect directly: the arguments go back.
    void portStateEvent(bool& bPortBusy);
    /// Progress of a long operation in percent, -1 for none; a handler that sets bCancel stops it.
    void statusEvent(QString& sStatusMsg, int iProgress, bool& bCancel);
    /// What is known of line and printer has changed: an enumLineState, an enumPrinterActivity and
    /// the generation. QNComm::LiveFacts tells the rest.
    void liveStateEvent(int iLine, int iPrinter, int lGeneration);
    /// A slot or an action of run() raised an error: its number, its source and its description.
    void error(int lNumber, const QString& sSource, const QString& sDescription);
    /// A property of the control has changed; sName is its name, such as "BackColor".
    void propertyChanged(const QString& sName);
    /// The capture's file takes no more.
    void captureFailed(const QString& sPath, const QString& sReason);
    /// What is marked in the terminal has changed.
    void selectionChanged();

  protected:
    /// Lays out title bar, toolbar, terminal and grip anew.
    void resizeEvent(QResizeEvent* event) override;
    /// Draws the border, if BorderStyle asks for one.
    void paintEvent(QPaintEvent* event) override;
    /// Reads the properties the first time, docks the widget, and soon afterwards has the control
    /// take the port.
    void showEvent(QShowEvent* event) override;
    /// Has the control give the port back; cancels what runs when the window goes, too.
    void hideEvent(QHideEvent* event) override;
    /// Tells the control whether it is enabled.
    void changeEvent(QEvent* event) override;
    /// Carries on with showing the control and with cancelling its operations.
    void timerEvent(QTimerEvent* event) override;
    /// Lays the frame out anew when the size of title bar or toolbar has changed.
    bool event(QEvent* event) override;
    /// Follows the size of the form that the widget is docked on.
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
