#pragma once

#include "assembly/ControlAssembly.h"

#include <QFont>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <string_view>

namespace qncomm {

class QNError;
class QtPropertyBag;

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
    /// Colours are 0x00BBGGRR, or negative for a colour of the desktop.
    Q_PROPERTY(int BackColor READ backColor WRITE setBackColor RESET resetBackColor)
    Q_PROPERTY(int ForeColor READ foreColor WRITE setForeColor RESET resetForeColor)
    Q_PROPERTY(bool Enabled READ isEnabled WRITE setEnabled RESET resetEnabled)
    Q_PROPERTY(int BackStyle READ backStyle WRITE setBackStyle RESET resetBackStyle)
    Q_PROPERTY(int BorderStyle READ borderStyle WRITE setBorderStyle RESET resetBorderStyle)
    Q_PROPERTY(int Columns READ columns WRITE setColumns RESET resetColumns)
    Q_PROPERTY(int Rows READ rows WRITE setRows RESET resetRows)
    Q_PROPERTY(QString Caption READ caption WRITE setCaption RESET resetCaption)
    Q_PROPERTY(
        bool ToolbarVisible READ toolbarVisible WRITE setToolbarVisible RESET resetToolbarVisible)
    Q_PROPERTY(int ToolbarAlign READ toolbarAlign WRITE setToolbarAlign RESET resetToolbarAlign)
    Q_PROPERTY(QFont Font READ terminalFont WRITE setFont RESET resetFont)
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

    int backColor() const;
    int foreColor() const;
    int backStyle() const;
    int borderStyle() const;
    int columns() const;
    int rows() const;
    QString caption() const;
    bool toolbarVisible() const;
    int toolbarAlign() const;
    QFont terminalFont() const;
    int align() const;

    void setBackColor(int lColor);
    void setForeColor(int lColor);
    void setBackStyle(int iStyle);
    void setBorderStyle(int iStyle);
    /// The size of the grid at design time; at run time it is always 300 by 300.
    void setColumns(int iColumns);
    void setRows(int iRows);
    void setCaption(const QString& sCaption);
    void setToolbarVisible(bool bVisible);
    void setToolbarAlign(int iAlign);
    /// The terminal's font. One that was chosen at design time is kept, but not used at run time.
    void setFont(const QFont& font);
    void setAlign(int iAlign);

    void resetBackColor();
    void resetForeColor();
    void resetEnabled();
    void resetBackStyle();
    void resetBorderStyle();
    void resetColumns();
    void resetRows();
    void resetCaption();
    void resetToolbarVisible();
    void resetToolbarAlign();
    void resetFont();

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

    Variant Property(std::string_view name) const;
    void SetProperty(std::string_view name, const Variant& value);
    QtPropertyBag BagOfNow() const;
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
