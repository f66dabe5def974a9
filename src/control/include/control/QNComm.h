#pragma once

#include "common/Clipboard.h"
#include "common/ControlModels.h"
#include "common/Desktop.h"
#include "common/Event.h"
#include "common/FileDialog.h"
#include "common/InputBox.h"
#include "common/Launcher.h"
#include "common/MessageLoop.h"
#include "common/RegSettings.h"
#include "control/ControlHost.h"
#include "control/ControlProperty.h"
#include "control/FrameLayout.h"
#include "control/Macros.h"
#include "control/PopUpMenu.h"
#include "control/PropertyBag.h"
#include "control/TitleModel.h"
#include "control/ToolbarModel.h"
#include "control/ViewportTerminal.h"
#include "dialogs/FormWindows.h"
#include "link/SerialControl.h"
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

/// What a control asks of the desktop it runs on.
struct ControlServices {
    MessageLoop& loop;
    Desktop& desktop;
    InputBoxes& inputs;
    Clipboard& clipboard;
    FileDialogs& files;
    Launcher& launcher;
    FormWindows& forms;
};

/// What a control is put together from.
struct ControlParts {
    SerialControl& PDQComm1;
    ViewportTerminal& terminal;
    ControlHost& host;
    ControlWindow& window;
    /// Whoever owns the serial control; kept as long as an operation or an event of the control is
    /// on the stack. May be null: the serial control then outlives them by other means.
    std::shared_ptr<void> keep = {};
};

/// The arguments of PrintFont; what it uses in place of 0 and empty texts is written back.
struct PrintFontArgs {
    std::string sText;
    std::string sFontName;
    std::int16_t iSize = 0;
    std::int16_t iSlant = 0;
    std::int16_t iWidth = 0;
    std::int16_t iDir = 0;
    bool bUcase = false;
    bool bInverse = false;
};

/// The arguments of ModuleUpload; the target and the text that it uses are written back.
struct ModuleUploadArgs {
    std::string sSourcePath;
    std::string sTargetPath;
    std::string sModuleText;
};

/// The control that a host places on one of its forms: a terminal with a toolbar, a title bar and a
/// grip, and the public face of the printer behind it.
///
/// Single-threaded. At design time, which is before ReadProperties has run in a container in user
/// mode, and after TearDown, members that reach the printer raise 91. They pass on what the command
/// layer and the link raise. While an operation runs, which a handler of StatusEvent can see,
/// text that a macro or PasteCB would send is refused quietly. TearDown may be called, and the
/// control may be destroyed, from within its own events and while a box or a dialog of its is
/// shown.
///
/// Parts and services outlive the control, and what of it is on the stack at its end, by a turn of
/// the loop; ControlParts::keep does that for the serial control.
class QNComm {
  public:
    QNComm(const ControlParts& parts, const ControlServices& services);
    ~QNComm();
    QNComm(const QNComm&) = delete;
    QNComm& operator=(const QNComm&) = delete;

    // -- Events

    /// bPortBusy: the port was opened or closed.
    Event<bool&> PortStateEvent;
    /// sStatusMsg, iProgress, bCancel: progress of a long operation in percent, -1 for none; a
    /// handler that sets bCancel stops it.
    Event<std::string&, std::int16_t, bool&> StatusEvent;

    // -- Printer storage, images and fonts. The collections are those of the last listing; a later
    // one leaves them as they are.

    /// The files of a device ("ram:", "rom:", "card1:", "card2:", "c:", "tmp:", with or without the
    /// colon, in any case). Asks the printer only when the list is empty, out of date, or brefresh
    /// is set. Nothing while the screen's pointer shows the hourglass. Raises 1018 for other names
    /// and 1010 for a device that the printer does not have.
    std::shared_ptr<PrinterFiles> Files(const std::string& sDeviceName, bool brefresh = false,
                                        bool bShowSystemFiles = false);
    std::shared_ptr<PrinterFiles> Images(bool brefresh = false);
    /// How many the last listing had, without asking the printer; 0 before any.
    std::int16_t ImagesCount() const;
    void InstallImage(const std::string& sImageName, bool bPermanent = false);
    void PrintImage(const std::string& sImageName, std::int32_t lXPos = 1, std::int32_t lYPos = 1,
                    bool bInverse = false, bool bReload = false);
    std::shared_ptr<PrinterFiles> Fonts(bool brefresh = false, bool bFilter = false);
    std::int16_t FontsCount() const;
    void InstallFont(const std::string& sFullFontPath, bool bPermanent = false);
    void PrintFont(PrintFontArgs& args);

    // -- The printer

    /// Shows the serial port setup dialog.
    void ShowCommSettings();
    /// Searches for the printer on the current port.
    bool DoAutoconnect();
    void KillQN(const std::string& sFullFilename);
    void RemoveImage(const std::string& sImageName);
    std::string PrinterType();
    std::string FirmwareVersion();
    /// 0: the firmware version, 1: the printer type; raises 1018 for others.
    std::string Version(std::int16_t iNumber);
    void Reboot();
    void CopyFile(const std::string& sSource, const std::string& sDestination);
    void RenameFile(const std::string& sSource, const std::string& sDestination);
    void NewProgram();
    std::int32_t Fre();
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

    std::shared_ptr<PrinterSetup> Setup();
    void ChangePrinterSetupItem(const std::string& sSetupKey, const std::string& sValue);
    void UploadQNProgram(const std::string& sFileName);
    void SetupWriteFile(const std::string& sFullName);
    void SetupLoadFile(const std::string& sFullName);
    void FormatDev(const std::string& sDevName, bool bSystemLevel = false);
    void ChDir(const std::string& sDevName);

    // -- Transfers. Raise 1022 (downloads) and 1023 (uploads) when the transfer failed.

    /// Sends a host file by Kermit in place of the printer's file sDestination ("ram:NAME"; the
    /// file's own name when it is empty). With bManual the person has started the printer's side
    /// and no command is sent. Raises 1011 for a host file that is not there.
    void KermitUpload(const std::string& sSource, const std::string& sDestination,
                      bool bManual = false);
    /// Receives printer file sSource by Kermit into a host file; progress counts against the size
    /// in its device's listing, 5120 bytes when that tells none.
    void KermitDownload(const std::string& sSource, const std::string& sDestination);
    /// Sends a host file over the open port to a printer that is waiting for it, and receives one
    /// from a printer that is sending. iProtocol is a BinaryProtocol. Refused quietly while an
    /// operation runs.
    void BinaryUpload(const std::string& sSource, std::int16_t iProtocol = BinaryZModem);
    void BinaryDownload(const std::string& sDestination, std::int16_t iProtocol = BinaryZModem);

    // -- Appearance. Colours are 0x00BBGGRR, or negative for a colour of the system.

    std::int32_t BackColor() const;
    void SetBackColor(std::int32_t lColor);
    std::int32_t ForeColor() const;
    void SetForeColor(std::int32_t lColor);
    std::int16_t BackStyle() const;
    void SetBackStyle(std::int16_t iStyle);
    std::int16_t BorderStyle() const;
    void SetBorderStyle(std::int16_t iStyle);
    bool Enabled() const;
    void SetEnabled(bool bEnabled);
    bool ToolbarVisible() const;
    void SetToolbarVisible(bool bVisible);
    std::int16_t ToolbarAlign() const;
    void SetToolbarAlign(std::int16_t iAlign);
    TerminalFont Font() const;
    void SetFont(const TerminalFont& font);
    std::int16_t CursorColumn() const;
    std::int16_t CursorRow() const;
    void SetCursorRow(std::int16_t iRow);

    // -- Toolbar, capture and the rest

    /// Presses the button of a key or, as a number, at a position from 1 (raises 9 for none). A key
    /// without a button says in a box that it is not implemented.
    void PressToolbarKey(std::string_view KeyIndex);
    void PressToolbarKey(std::int32_t KeyIndex);
    /// Has the control painted again, which lays it out anew.
    void Refresh();
    /// Appends what the terminal shows from now on to the file. Raises 70, 75 or 76.
    void SetCaptureToFile(const std::string& sPath);
    /// The bytes used and free in a device as its last listing said, as texts. Raises 5 for a name
    /// that is not in the device table (any case, with its colon) and before any listing.
    std::string DeviceUsedMem(std::string_view sDev) const;
    std::string DeviceFreeMem(std::string_view sDev) const;
    bool ProgramLink(const Collection<std::string>& colModules, std::string_view sHeader = {});
    void RunProgram();
    std::string TerminalFontName() const;
    void SetTerminalFontName(std::string_view sName);
    /// Points, as text with "." in every locale. A text that is no number raises 13, a size that is
    /// not above 0 raises 5.
    std::string TerminalFontSize() const;
    void SetTerminalFontSize(std::string_view sSize);
    void SetHelpFile(std::string_view sPath);
    const std::shared_ptr<qncomm::RegSettings>& RegSettings() const { return mRegSettings; }
    /// Hands the settings to the command layer and the link, which loads its own from them.
    void SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings);
    /// Closes the port and lets go of link and command layer. Harmless when repeated.
    void TearDown();
    bool IsProgramRunable();

    // -- For hosts that need what the surface does not offer. Both raise 91 at design time and
    // after TearDown, which they do not outlive.

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

    /// The text of the title bar, 8-bit as the label shows it.
    const std::string& Caption() const { return lblCaption.Caption(); }
    ToolbarModel Toolbar1;
    TitleModel lblCaption;
    ButtonModel cmdClose;

    /// A new instance on a form: docked at the bottom, font "Courier".
    void UserControl_InitProperties();
    /// Reads the properties and, in user mode, makes and wires link and command layer. Raises 13 or
    /// 6 for a value of a wrong type and 5 for a grid that cannot be; nothing has changed then.
    void UserControl_ReadProperties(const PropertyBag& bag);
    void UserControl_WriteProperties(PropertyBag& bag) const;
    void UserControl_Show();
    void UserControl_Hide();
    void UserControl_EnterFocus();
    void UserControl_ExitFocus();
    void UserControl_Resize();
    /// Lays the frame out and puts the terminal in its place.
    void UserControl_Paint();

    /// A key goes down in the terminal: its code (returns 0 when it goes no further) and the keys
    /// held (1 Shift, 2 Ctrl, 4 Alt). Raises no QNError.
    void PDQComm1_KeyDown(std::int16_t& iKeyCode, std::int16_t iShift);
    /// A mouse button (1 left, 2 right) goes down in the terminal.
    void PDQComm1_MouseDown(std::int16_t iButton);
    void mnuPopUp_Click(std::int16_t iIndex);
    /// The grip is released at lY from itself.
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
    std::shared_ptr<PrinterFiles> CachedList(const std::string& device, bool refresh, List list);
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
    std::shared_ptr<qncomm::RegSettings> mRegSettings;
    std::shared_ptr<MacroPrompts> mPrompts; ///< shared with the macro that is asking

    PropertyValues mKept; ///< the properties whose values are nowhere else
    std::vector<Subscription> mHandlers;
    /// Goes with the control, whose host may destroy it while one of its boxes or dialogs is open.
    std::shared_ptr<const void> mHere = std::make_shared<char>();
};

} // namespace qncomm
