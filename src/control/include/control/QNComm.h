#pragma once

#include "common/ControlModels.h"
#include "common/Event.h"
#include "common/RegSettings.h"
#include "control/ControlParts.h"
#include "control/ControlProperty.h"
#include "control/FrameLayout.h"
#include "control/Macros.h"
#include "control/PopUpMenu.h"
#include "control/PropertyBag.h"
#include "control/TitleModel.h"
#include "control/ToolbarModel.h"
#include "control/clsLiveFact.h"
#include "printer/clsPrinterDevice.h"
#include "printer/clsPrinterFile.h"
#include "printer/clsPrinterSetupItem.h"
#include "printer/clsQNModuleError.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

class clsDataLink;
class clsQuorin;

/// The arguments of PrintFont; what it uses in place of 0 and empty texts is written back.
struct PrintFontArgs {
    std::string sText;       ///< 8-bit; empty: "The quick brown fox..."
    std::string sFontName;   ///< as the listing of Fonts has it
    std::int16_t iSize = 0;  ///< points; 0: 12
    std::int16_t iSlant = 0; ///< degrees
    std::int16_t iWidth = 0; ///< percent of the font's own width; 0: 100
    std::int16_t iDir = 0;   ///< the printing direction, 1 to 4; 0: 1
    bool bUcase = false;     ///< prints in upper case, and sText returns so
    bool bInverse = false;   ///< white on black
};

/// The arguments of ModuleUpload; the target and the text that it uses are written back.
struct ModuleUploadArgs {
    /// A host file in UTF-8; looked at only while sModuleText is empty.
    std::string sSourcePath;
    /// "DEVICE:NAME" on the printer. Empty: the source's file name; without a device: the model's
    /// work device.
    std::string sTargetPath;
    std::string sModuleText; ///< the program's lines, 8-bit
};

/// The control that a host places on one of its forms: a terminal with a toolbar, a title bar and a
/// grip, and the public face of the printer behind it.
///
/// Single-threaded. Paths and names of host files are UTF-8; what the printer is told and tells is
/// 8-bit. Times are in milliseconds, positions count from 1.
///
/// Members that reach the printer claim the port for as long as they run and then wait for its
/// reply, yielding to the message loop meanwhile. From there the host may call the control again:
/// what would speak in the middle of another exchange is refused, a line in the desktop's log says
/// so, and the member returns without a result (empty, 0, False, the last listing). While an
/// operation runs, text that a macro or PasteCB would send is refused in the same way.
///
/// They raise what clsQuorin and clsDataLink raise: 91 (source "QNComm") at design time, which is
/// before ReadProperties has run in a container in user mode, and after TearDown; 1007, 1008 and
/// 1024 when the line does not take, does not answer or is closed (sources "Datalink:OutputText"
/// and "Datalink:InputText"); 60000 and the printer's own number when the printer reports an error.
/// An operation that raises has given its claim back.
/// OperationCancelled leaves them after CancelOperations.
///
/// The host may call TearDown or destroy the control in any of its events and while one of its
/// message boxes or dialogs is open. Parts and services must live until one turn of the loop after
/// the control is destroyed and its last running operation has returned; ControlParts::keep does
/// that for the serial control.
class QNComm {
  public:
    /// At design time, before any properties were read; opens nothing.
    QNComm(const ControlParts& parts, const ControlServices& services);
    ~QNComm();
    QNComm(const QNComm&) = delete;
    QNComm& operator=(const QNComm&) = delete;

    // -- Events

    /// bPortBusy: True when the first claim has opened the port, False when the last one has closed
    /// it. What a handler writes into it has no effect.
    Event<bool&> PortStateEvent;
    /// sStatusMsg, iProgress, bCancel: progress of a long operation in percent, -1 for none; a
    /// handler that sets bCancel asks a transfer or the typing of a module to stop. Raised while
    /// the operation holds the port: what a handler would send then is refused.
    Event<std::string&, std::int16_t, bool&> StatusEvent;
    /// iLine (an enumLineState), iPrinter (an enumPrinterActivity), lGeneration: what is known of
    /// line and printer has changed. LiveFacts tells the rest. Raised where it is learnt, mostly
    /// while an operation runs: what a handler would send then is refused.
    Event<std::int16_t, std::int16_t, std::int32_t> LiveStateEvent;

    // -- Printer storage, images and fonts. The collections are those of the last listing; a later
    // one leaves them as they are.

    /// The files of a device ("ram:", "rom:", "card1:", "card2:", "c:", "tmp:", with or without the
    /// colon, in any case). Asks the printer only when the list is empty, out of date, or brefresh
    /// is set. Nothing while the screen's pointer shows the hourglass. Raises 1018 for other names
    /// and 1010 for a device that the printer does not have.
    std::shared_ptr<PrinterFiles> Files(const std::string& sDeviceName, bool brefresh = false,
                                        bool bShowSystemFiles = false);
    /// The images of the printer. Asks it only when the list is empty, out of date, or brefresh is
    /// set.
    std::shared_ptr<PrinterFiles> Images(bool brefresh = false);
    /// How many the last listing had, without asking the printer; 0 before any.
    std::int16_t ImagesCount() const;
    /// Sends a PCX file of this machine, in place of an image of that name; bPermanent keeps it
    /// over a restart. Settings that do not carry raw bytes are adjusted, if the user allows it in
    /// a box. Raises 1013 (no such file), 1014 (the settings may not be changed) and 1015 (no PCX),
    /// with source "clsQuorin:InstallImage".
    void InstallImage(const std::string& sImageName, bool bPermanent = false);
    /// Prints an image at a position in dots, bInverse in white on black. An image that the printer
    /// does not have, or with bReload any, is installed first from host file sImageName; raises as
    /// InstallImage then.
    void PrintImage(const std::string& sImageName, std::int32_t lXPos = 1, std::int32_t lYPos = 1,
                    bool bInverse = false, bool bReload = false);
    /// The fonts of the printer, as Images lists images. bFilter leaves out the built-in bitmap
    /// fonts when the printer is asked, on the models that can tell them.
    std::shared_ptr<PrinterFiles> Fonts(bool brefresh = false, bool bFilter = false);
    /// How many the last listing had, without asking the printer; 0 before any.
    std::int16_t FontsCount() const;
    /// Sends a TrueType font file of this machine; bPermanent keeps it over a restart. Raises 1016
    /// (no such file), 1017 (a model without TrueType fonts) and 1014 (settings that do not carry
    /// raw bytes), with source "clsQuorin:InstallFont".
    void InstallFont(const std::string& sFullFontPath, bool bPermanent = false);
    /// Prints a line of sample text and returns in args what was used, also when the port was
    /// refused.
    void PrintFont(PrintFontArgs& args);

    // -- The printer

    /// Shows the serial port setup dialog and returns when it was closed. Accepted settings are
    /// stored and applied.
    void ShowCommSettings();
    /// Searches for the printer on the current port, at other settings too; True when it was found.
    /// False at once from within an event or a wait of a running operation.
    bool DoAutoconnect();
    /// Deletes a printer file ("ram:NAME"; without a device, of the printer's current one) and
    /// marks the device's listing out of date. Raises 1010, source "clsQuorin:SetDeviceDirty", for
    /// an unknown device.
    void KillQN(const std::string& sFullFilename);
    /// Removes an image that the listing holds; does nothing for any other name.
    void RemoveImage(const std::string& sImageName);
    /// The printer's model code, such as "R7G"; empty when the port is refused. Asks the printer
    /// once a connection.
    std::string PrinterType();
    /// The firmware's whole version text; as PrinterType.
    std::string FirmwareVersion();
    /// 0: the firmware version, 1: the printer type. Raises 1018, source "QNComm:Version", for
    /// others.
    std::string Version(std::int16_t iNumber);
    /// Restarts the printer, shows a progress form until it answers again, and forgets listings and
    /// model.
    void Reboot();
    /// Copies a printer file ("ram:NAME") to another name or device, in at most 45 s. Raises 1010
    /// for an unknown device of the destination.
    void CopyFile(const std::string& sSource, const std::string& sDestination);
    /// Copies a printer file and deletes the old one, so that it works across devices. Raises as
    /// CopyFile, for both devices.
    void RenameFile(const std::string& sSource, const std::string& sDestination);
    /// Erases the program in the printer's working memory.
    void NewProgram();
    /// Free bytes of the printer's working memory; 0 when the port is refused.
    std::int32_t Fre();
    /// Types a module into the printer and saves it there when the printer reported no error for
    /// it. Returns the errors, and in args the target and the text that were used. Raises 1020 for
    /// a target without a name and 1021 for an empty source before anything is sent, and 457 for
    /// two errors in one line. A handler of StatusEvent that cancels ends the typing; what was
    /// typed is saved.
    std::shared_ptr<ModuleErrors> ModuleUpload(ModuleUploadArgs& args);

    // -- The viewport

    /// Empties the screen; the cursor keeps its row.
    void Clear();
    /// Puts the screen's text on the clipboard, without the blanks at the ends of its lines; an
    /// empty screen is an empty text.
    void CopyCB();
    /// Sends the clipboard's text as it is, without a claim; raises 1024 on a closed port.
    void PasteCB();

    // -- Setup, files and devices

    /// Reads the printer's whole setup. The collection stays as it is at later readings. Raises 5
    /// for a line without a comma and 457 for a key that comes twice.
    std::shared_ptr<PrinterSetup> Setup();
    /// Changes one item on the printer, not in collections that Setup returned. The key is sent in
    /// upper case; it is one of Setup's.
    void ChangePrinterSetupItem(const std::string& sSetupKey, const std::string& sValue);
    /// Writes the listing of the printer's working program to a host file, which is replaced whole
    /// or stays as it was. Raises 70, 75 or 76 when it cannot be written.
    void UploadQNProgram(const std::string& sFileName);
    /// Has the printer write its setup to a file of its own ("c:NAME").
    void SetupWriteFile(const std::string& sFullName);
    /// Has the printer take its setup from a file of its own.
    void SetupLoadFile(const std::string& sFullName);
    /// Erases a device ("ram:"), with bSystemLevel its system files too on the models that have
    /// them. Raises 1010, source "clsQuorin:IsValidPrinterDevice", for a device that the model does
    /// not have; nothing was sent then.
    void FormatDev(const std::string& sDevName, bool bSystemLevel = false);
    /// Makes a device the printer's current one. Raises as FormatDev.
    void ChDir(const std::string& sDevName);

    // -- Transfers. Raise 1022 (downloads) and 1023 (uploads) when the transfer failed.

    /// Sends a host file by Kermit in place of the printer's file sDestination ("ram:NAME"; the
    /// file's own name when it is empty). With bManual the user has started the printer's side
    /// and no command is sent. Raises 1011, source "clsDataLink,Upload", for a host file that is
    /// not there.
    void KermitUpload(const std::string& sSource, const std::string& sDestination,
                      bool bManual = false);
    /// Receives printer file sSource by Kermit into a host file; progress counts against the size
    /// in its device's listing, 5120 bytes when that tells none.
    void KermitDownload(const std::string& sSource, const std::string& sDestination);
    /// Sends a host file over the open port to a printer that is waiting for it; no command is
    /// sent. iProtocol is a BinaryProtocol. Refused quietly while an operation runs. Raises 1011
    /// (no such file) and 1024 (closed port), source "clsDataLink, BinaryUpload".
    void BinaryUpload(const std::string& sSource, std::int16_t iProtocol = BinaryZModem);
    /// Receives a host file over the open port from a printer that is sending. Refused as
    /// BinaryUpload; the port must be open.
    void BinaryDownload(const std::string& sDestination, std::int16_t iProtocol = BinaryZModem);

    // -- Appearance. Colours are 0x00BBGGRR, or negative for a colour of the system. What sets one
    // of the persisted properties tells the container (ControlHost::PropertyChanged) and works at
    // design time and at run time; none reaches the printer.

    /// The terminal's background; 15, an almost black red, by default.
    std::int32_t BackColor() const;
    /// Counts at once.
    void SetBackColor(std::int32_t lColor);
    /// The colour of the terminal's text; 0, black, by default.
    std::int32_t ForeColor() const;
    /// Counts at once.
    void SetForeColor(std::int32_t lColor);
    /// 0: the control's background is transparent; others: it is filled. 1 by default.
    std::int16_t BackStyle() const;
    /// The number is kept as it is; a face shows it.
    void SetBackStyle(std::int16_t iStyle);
    /// 0: no border; others: a single line around the control. 0 by default.
    std::int16_t BorderStyle() const;
    /// The number is kept as it is; a face shows it.
    void SetBorderStyle(std::int16_t iStyle);
    /// Whether the control takes keys and clicks; True by default.
    bool Enabled() const;
    /// Has no effect on operations: a host may call them while it is disabled.
    void SetEnabled(bool bEnabled);
    /// Whether the toolbar is shown from the next paint on; True by default.
    bool ToolbarVisible() const;
    /// Shows or hides the toolbar at once and lays the frame out anew.
    void SetToolbarVisible(bool bVisible);
    /// Where the toolbar stands: a ToolbarAlignValue. ToolbarTop by default.
    std::int16_t ToolbarAlign() const;
    /// Keeps any number; the frame is laid out anew.
    void SetToolbarAlign(std::int16_t iAlign);
    /// The terminal's font.
    TerminalFont Font() const;
    /// Raises 5 for a size that is no number.
    void SetFont(const TerminalFont& font);
    /// The column of the terminal's cursor, from 1.
    std::int16_t CursorColumn() const;
    /// The row of the terminal's cursor, from 1.
    std::int16_t CursorRow() const;
    /// Moves the cursor to the nearest row that there is and tells the container.
    void SetCursorRow(std::int16_t iRow);

    // -- Toolbar, capture and the rest

    /// Presses the toolbar's button of that key, in any case, and does what it is for; returns when
    /// that is done. A key without a button is answered by a box that it is not implemented. Raises
    /// what the button's operation raises.
    void PressToolbarKey(std::string_view KeyIndex);
    /// Presses the button at a position from 1, the leftmost one; raises 9 for none.
    void PressToolbarKey(std::int32_t KeyIndex);
    /// Has the control painted again, which lays it out anew.
    void Refresh();
    /// Appends what the terminal shows from now on to a host file, in place of a capture that runs.
    /// Raises 70, 75 or 76 when it cannot be opened; the capture that ran goes on then.
    void SetCaptureToFile(const std::string& sPath);
    /// The bytes used in a device as its last listing said, as text. Raises 5 for a name that is
    /// not in the device table (any case, with its colon) and before any listing.
    std::string DeviceUsedMem(std::string_view sDev) const;
    /// The bytes free in a device; as DeviceUsedMem.
    std::string DeviceFreeMem(std::string_view sDev) const;
    /// Builds the working program from program lines (sHeader) and the printer's module files, in
    /// their order. False when the port is refused or any step raised an error.
    bool ProgramLink(const Collection<std::string>& colModules, std::string_view sHeader = {});
    /// Starts the working program and returns without waiting for its end. A program without a line
    /// 1 gets one for the moment of the start.
    void RunProgram();
    /// The family of the terminal's font, UTF-8.
    std::string TerminalFontName() const;
    /// Keeps the size; the container is not told.
    void SetTerminalFontName(std::string_view sName);
    /// The size of the terminal's font in points, as text with "." in every locale.
    std::string TerminalFontSize() const;
    /// Keeps the name; the container is not told. A text that is no number raises 13, one that is
    /// too large 6, a size that is not above 0 raises 5.
    void SetTerminalFontSize(std::string_view sSize);
    /// Tells the application its help file; a face without help ignores it.
    void SetHelpFile(std::string_view sPath);
    /// The settings store that was handed over last; null before.
    const std::shared_ptr<qncomm::RegSettings>& RegSettings() const { return mRegSettings; }
    /// Hands the settings store, which is shared, to the command layer and the link, which loads
    /// the port's settings from it at once, and reads the tool tips of the function keys. A port
    /// that is busy is told in a box. Raises 91 at design time and after TearDown; the store is
    /// kept then.
    void SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings);
    /// Closes the port and lets go of link and command layer. Harmless when repeated.
    void TearDown();
    /// Whether the printer accepts its working program for running: a line 1 that ends at once is
    /// put in and run. An error that the printer reports is shown in a box. False for a program
    /// that has a line 1 of its own.
    bool IsProgramRunable();

    // -- What is known of line and printer: learnt from what passes on the line anyway, and never
    // asked for. A line that nobody holds open says nothing.

    /// What has become of the line: an enumLineState.
    std::int16_t LineState() const;
    /// What the printer does: an enumPrinterActivity, 0 while nothing says.
    std::int16_t PrinterActivity() const;
    /// A number that grows with each change of port, settings or identity, and whenever another
    /// printer may have taken the place of this one. What a host has read from the printer is the
    /// printer's as long as the number is the same.
    std::int32_t Generation() const;
    /// All that is known, each with when and how it was learnt; an unknown value is an empty text
    /// or "unknown". The collection stays as it is.
    std::shared_ptr<qncomm::LiveFacts> LiveFacts() const;
    /// For a host that is about to change on the printer what it has read in generation
    /// lGeneration: asks the printer who it is if that is not known, and raises 1100, source
    /// "Datalink:RequireGeneration", when it is another generation by now. With another one already
    /// nothing is sent.
    void RequireGeneration(std::int32_t lGeneration);

    // -- For hosts that need what the surface does not offer. All raise 91 at design time and
    // after TearDown; the references that they return are valid until then.

    /// The storage devices that the connected printer has; see clsQuorin::Devices.
    std::vector<std::string> Devices();
    /// Whether the connected printer can list its files, fonts and images; see clsQuorin::CanList.
    [[nodiscard]] bool CanList();

    /// Counts as one of this control's operations for as long as it is held: the references below
    /// stay valid even when the host destroys the control meanwhile, IsBusy tells it, and
    /// CancelOperations ends its waits. For a caller that runs the command layer or the link
    /// directly.
    [[nodiscard]] std::shared_ptr<const void> Hold() const;
    /// The printer's command layer.
    clsQuorin& Layer() const;
    /// The link that owns the port.
    clsDataLink& Link() const;

    // -- The persisted properties by their names, for a face and for callers that know names alone

    /// The properties that a property bag keeps, in the order in which they are stored.
    static std::span<const ControlProperty> Properties();
    /// The one of that name, in any case. Raises 438 for an unknown name.
    static const ControlProperty& PropertyNamed(std::string_view sName);
    /// What a property is now, also before any bag was read. Raises 438 for an unknown name.
    Variant Property(std::string_view sName) const;
    /// Sets a property and tells the container. Raises 438 for an unknown name, 13 or 6 for a value
    /// of a wrong type and 5 for a grid that cannot be; nothing has changed then. A control that
    /// runs ignores those that count at design time alone.
    void SetProperty(std::string_view sName, const Variant& value);

    // -- Operations, for a face or a program that ends

    /// Whether one of this control's operations is running.
    bool IsBusy() const;
    /// Ends them: each that still waits after lGraceMs sees its wait throw OperationCancelled,
    /// once, so that what unwinds can still wait; one within the wait of another goes first.
    /// Nothing when none runs; those of other controls go on.
    void CancelOperations(std::int32_t lGraceMs);

    // -- What a face shows and hands in

    /// The text of the title bar, UTF-8.
    const std::string& Caption() const { return lblCaption.Caption(); }
    /// The toolbar's buttons. A click of the user goes to ToolbarModel::Click.
    ToolbarModel Toolbar1;
    /// The title bar's label; its caption is the property Caption.
    TitleModel lblCaption;
    /// The title bar's button that hides the control.
    ButtonModel cmdClose;

    /// A new instance on a form: docked at the bottom, every property at its default, font
    /// "Courier".
    void UserControl_InitProperties();
    /// Reads the properties and, in user mode, makes and wires link and command layer. Raises 13 or
    /// 6 for a value of a wrong type and 5 for a grid that cannot be; nothing has changed then.
    void UserControl_ReadProperties(const PropertyBag& bag);
    /// Writes every row of Properties; a value that equals its default is not stored.
    void UserControl_WriteProperties(PropertyBag& bag) const;
    /// The control was shown. At run time it claims the port for the terminal and takes the focus;
    /// raises what opening the port raises, and 91 after TearDown. At design time the terminal only
    /// gets its looks.
    void UserControl_Show();
    /// The control was hidden: gives back the terminal's claim, which closes the port unless
    /// another holds it.
    void UserControl_Hide();
    /// The focus came into the control: the title bar shows it.
    void UserControl_EnterFocus();
    /// The focus left the control.
    void UserControl_ExitFocus();
    /// The window has another size: has the control painted again.
    void UserControl_Resize();
    /// Lays the frame out and puts the terminal in its place.
    void UserControl_Paint();

    /// A key goes down in the terminal: its code (returns 0 when it goes no further) and the keys
    /// held (1 Shift, 2 Ctrl, 4 Alt). Raises no QNError.
    void PDQComm1_KeyDown(std::int16_t& iKeyCode, std::int16_t iShift);
    /// A mouse button (1 left, 2 right) goes down in the terminal; the right one shows the menu.
    void PDQComm1_MouseDown(std::int16_t iButton);
    /// The user picked an item of the menu: 1 copies, 2 pastes; others do nothing. Raises as
    /// PasteCB.
    void mnuPopUp_Click(std::int16_t iIndex);
    /// The user released the grip at lY from itself, upwards negative, in the container's units:
    /// the control changes its height within the limits of LimitedDrag.
    void imgSizer_MouseUp(std::int32_t lY);

  private:
    struct Members;
    struct TerminalProperty;
    struct ToolbarCommand;
    class Operation;

    /// QNComm.cpp
    const std::shared_ptr<Members>& Wired() const;
    Operation Begin() const;
    void Wire();
    void Release();
    static void KeepUntilRelayed(MessageLoop& loop, std::shared_ptr<Members> members);
    void LayOut();
    FrameSizes Sizes() const;

    /// Properties.cpp, ControlProperty.cpp
    using PropertyValues = std::map<std::string_view, Variant>; ///< by the name in the table
    static PropertyValues ReadAll(const PropertyBag& bag);
    void Apply(const PropertyValues& values);
    void Keep(const ControlProperty& property, const Variant& value);
    Variant Value(const ControlProperty& property) const;

    /// Surface.cpp, Listings.cpp
    template <class List>
    std::shared_ptr<PrinterFiles> CachedList(std::string_view device, bool refresh, List list);
    std::int16_t CountOf(std::string_view device) const;
    std::int32_t ListedSize(const std::string& path);

    /// ToolbarCommands.cpp
    void Dispatch(const std::string& key);
    void LoadFunctionKeyTips();
    void PressFunctionKey(const std::string& key);
    void SendTextMacro(const std::string& argument);
    void SendFileMacro(const std::string& path);
    void StartProgram(const std::string& commandLine);
    void UploadText();
    void DownloadText();
    void ShowFunctionKeys();
    void TransferFile(std::int16_t action);
    void SendText(std::string_view text);
    void SendFile(const std::string& path);
    bool MaySend() const;
    std::optional<std::string> ChosenFile(const FileDialog& dialog);
    /// Runs what shows a box or a dialog. False when the host has destroyed the control meanwhile:
    /// its caller then returns without touching it.
    template <class Ask>
    [[nodiscard]] bool Outlives(Ask ask) const {
        const std::weak_ptr<const void> here = mHere;
        ask();
        return !here.expired();
    }
    void Tell(std::string text, MsgBoxIcon icon) const;

    ControlParts mParts;
    ControlServices mServices;
    std::shared_ptr<Members> mMembers; ///< link and command layer; none at design time
    std::int32_t mNextGeneration = 1;  ///< the first of the next link
    std::shared_ptr<qncomm::RegSettings> mRegSettings;
    std::shared_ptr<MacroPrompts> mPrompts; ///< shared with the macro that is asking

    PropertyValues mKept; ///< the properties whose values are nowhere else
    std::vector<Subscription> mHandlers;
    /// Goes with the control, whose host may destroy it while one of its boxes or dialogs is open.
    std::shared_ptr<const void> mHere = std::make_shared<char>();
};

} // namespace qncomm
