#pragma once

#include "common/Desktop.h"
#include "common/Event.h"
#include "common/HostFiles.h"
#include "common/RegSettings.h"
#include "link/clsDataLink.h"
#include "printer/clsPrinterDevice.h"
#include "printer/clsPrinterSetupItem.h"
#include "printer/clsQNModuleError.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// Everything a printer can be told: turns operations on its devices, files, programs, modules,
/// setup, fonts and images into command lines, and its listings into records.
///
/// Every operation claims the port through the link, sends its lines, reads the replies, gives the
/// claim back and then marks the devices whose contents changed as dirty. A refused claim makes it
/// return quietly (a function returns its default) after a line to the desktop's log. Time-outs,
/// printer errors (60000 + n) and 1024 come from the link with the claim given back; 1009 and 1010
/// from the device table (unknown model; missing, unknown or absent device); host files raise the
/// runtime's numbers 53, 61, 67, 70, 75 and 76. Paths of this machine are UTF-8 texts; names on the
/// printer travel as they are.
///
/// Single-threaded, like the link. In handlers of StatusEvent that run within an exchange, new
/// operations are refused quietly. After TearDown every member that needs the link raises 91.
class clsQuorin {
  public:
    /// None is owned. Desktop and files must outlive this object; the link too, or TearDown is
    /// called first.
    clsQuorin(clsDataLink& link, Desktop& desktop, HostFiles& files);
    clsQuorin(const clsQuorin&) = delete;
    clsQuorin& operator=(const clsQuorin&) = delete;

    // -- Events

    /// sStatusMsg, iProgress, bCancel: progress in percent of a long operation, -1 for none. Only
    /// ModuleUpload looks at bCancel.
    Event<std::string&, std::int16_t&, bool&> StatusEvent;
    /// sImageName, sImageData: kept for hosts that connect to it; no operation raises it.
    Event<std::string&, std::string&> ConvertImage;

    // -- The link's members, passed on

    /// Searches for the printer on the current port; True when found.
    bool DoAutoconnect();
    /// The setup dialog's result, 1 when accepted.
    std::int16_t ShowSettingsDlg();
    /// Claims the port until PortClose; False when refused. Operations in between nest.
    bool PortOpen();
    /// Gives back one claim of PortOpen.
    void PortClose();
    /// The text that holds the model code, such as "R7G", asked of the printer when it is not
    /// known; empty when the port is refused. Raises 1000, source "Datalink:GetVersion", for a
    /// reply of another form.
    std::string PrinterType();
    /// The firmware version, asked for and refused as PrinterType is.
    std::string FirmwareVersion();
    /// The first number of the firmware version with its dots, empty when it has none.
    std::string FirmwareVersionNumber();
    /// Sends text as it is and empties sText; the port is open already.
    void OutputText(std::string& sText, bool bWaitForEcho = false);
    /// The link's store of settings; null when there is none.
    const std::shared_ptr<qncomm::RegSettings>& RegSettings() const;
    /// Hands the link a store, from which it loads its settings at once.
    void SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings);
    /// Lets go of the link, the collections and a kept image file. Harmless when repeated.
    void TearDown();

    // -- Storage

    /// The eight devices, each with its last listing; empty before the first operation that needs
    /// them. Never null.
    const std::shared_ptr<PrinterDeviceTable>& PrinterDevices();
    /// Puts another table in its place; with null the next operation that needs one makes it anew.
    void SetPrinterDevices(std::shared_ptr<PrinterDeviceTable> devices);

    /// Lets go of PrinterDevices when it was made in another generation of the link's live state:
    /// its listings are then those of a former printer. For whoever begins an operation; one that
    /// runs keeps its table.
    void ForgetFormerPrinter();

    /// The storage devices that the connected model has, such as "c:": what is built in and can be
    /// written first, then the cards, read-only storage last. Fills PrinterDevices when it is
    /// empty, asking the printer for its model when that is not known, and sends nothing else.
    /// Raises 1009, source "clsQuorin:InitFileSystem", for an unknown model and while the port is
    /// refused.
    std::vector<std::string> Devices();

    /// Whether the connected printer can list its files, fonts and images: False for the one model
    /// that cannot, of which Files, Fonts and Images show a box and list nothing. Asks the printer
    /// for its model when that is not known. True for an unknown model and while the port is
    /// refused: listing then says itself what is wrong.
    [[nodiscard]] bool CanList();

    /// Lists device sDev (returned in lower case) into its record, with system files on the models
    /// that have them. brefresh has no effect: every call asks the printer. Rows that cannot be
    /// told apart are left out; one box says so, and how many they are if there are several.
    void Files(std::string& sDev, bool brefresh = false, bool bListSystemFiles = false);

    /// Whether the listing holds sFullName (device, colon, name, in any case); lists the device
    /// first when its listing is out of date.
    bool PrinterFileExists(std::string_view sFullName);

    /// Deletes a file.
    void Kill(std::string_view sFullName);
    /// Makes a device current: names without a device mean files on it.
    void SetCurrentPrinterDir(std::string_view sDevice);
    /// The same, after checking that the model has the device (1010).
    void ChDir(std::string_view sDevName);
    /// Erases a device, its system files too on the models that have them.
    void FormatPrinterDevice(std::string_view sDevName, bool bSystemLevel = false);
    /// Erases the devices of the table one after another, but for "rom:", "fonts:" and "images:".
    /// Ends with 1010 at the first that the model does not have. An empty table formats nothing.
    void FormatAll(bool bSystemLevel = false);
    /// Copies a file of the printer to another name or device of its.
    void CopyFile(std::string_view sSource, std::string_view sDestination);
    /// Copies and then deletes the old file, so that it works across devices.
    void RenameFile(std::string_view sOldName, std::string_view sNewName);

    // -- The program in working memory

    /// Restarts the printer, waits until it answers, and forgets the device table and the model.
    void Reboot();
    /// Clears the program from working memory.
    void NewProgram();
    /// Starts the program, planting a line 1 for the moment of the start when it has none.
    void RunProgram();
    /// Whether the printer accepts the program for running: plants a line 1 that ends at once and
    /// runs that. An error that the printer reports is shown in a box. False for a program that has
    /// a line 1 of its own.
    bool IsProgramRunable();
    /// Saves the program as text in a file on the printer.
    void SaveProgram(std::string_view sFileName);
    /// Free bytes of working memory.
    std::int32_t Fre();
    /// Writes the listing to host file sFileName, which is replaced whole or stays as it was.
    void UploadQNProgram(const std::string& sFileName);

    // -- Modules

    /// Types a module into the printer and saves it when the printer reported no error for it.
    /// Returns the errors. The text comes from sModuleText or, when that is empty, from host file
    /// sSourcePath. sTargetPath defaults to the source's file name and gets the model's work device
    /// when it has none. sTargetPath and sModuleText return what was used. Raises 1020 and 1021
    /// before anything is sent, 457 for two errors in one line. A handler that cancels ends the
    /// typing; what was typed is saved.
    std::shared_ptr<ModuleErrors> ModuleUpload(const std::string& sSourcePath,
                                               std::string& sTargetPath, std::string& sModuleText);

    /// Builds the working program from program lines (sHeader) and the printer's module files, in
    /// their order. False when the port is refused or any step raised an error.
    bool ProgramLink(const Collection<std::string>& cModules, std::string_view sHeader = {});

    // -- Setup

    /// The items that GetSetup read last; never null.
    const std::shared_ptr<PrinterSetup>& PrinterSetupItems();
    /// Puts other items in their place, null for none. Sends nothing.
    void SetPrinterSetupItems(std::shared_ptr<PrinterSetup> items);
    /// Reads the whole setup. Raises 5 for a line without a comma and 457 for a key that comes
    /// twice; the items before it stay.
    void GetSetup();
    /// Changes one item on the printer, not in PrinterSetupItems. The key is sent in upper case.
    void ChangePrinterSetupItem(std::string_view sSetupKey, std::string_view sValue);
    /// Makes the printer write its setup to a file in its own storage.
    void SetupWriteFile(std::string_view sFullName);
    /// Makes the printer take its setup from such a file. PrinterSetupItems stays as it was.
    void SetupLoadFile(std::string_view sFullName);

    // -- Fonts

    /// Lists the fonts into device "fonts:"; bFilterBitmaps leaves out the built-in bitmap fonts on
    /// the models that can tell them.
    void Fonts(bool bFilterBitmaps = false);
    /// Removes a font by its name.
    void RemoveFont(std::string_view sFontName);
    /// Sends a TrueType font file of this machine. Raises 1016 (no such file), 1017 (model without
    /// TrueType fonts) and 1014 (settings that do not carry raw bytes).
    void InstallFont(const std::string& sFullFontPath, bool bPermanent = false);
    /// Prints a line of sample text. What is empty or 0 becomes "The quick brown fox...", size 12,
    /// width 100 and direction 1 in the caller's variables; with bUcase sText returns in upper
    /// case.
    void PrintFont(std::string& sText, std::string_view sFontName, std::int16_t& iSize,
                   std::int16_t iSlant, std::int16_t& iWidth, std::int16_t& iDir,
                   bool bUcase = false, bool bInverse = false);

    // -- Images and raw files

    /// Lists the images into device "images:".
    void Images();
    /// Removes an image that the listing holds; does nothing for any other name.
    void RemoveImage(std::string_view sImageName);
    /// Sends a PCX file of this machine, in place of an image of that name. Raises 1013 (no such
    /// file), 1014 (settings that do not carry raw bytes and may not be changed), 1015 (no PCX).
    void InstallImage(const std::string& sImageName, bool bPermanent = false);
    /// Prints an image at a position, installing it from this machine first when the printer does
    /// not have it or bReload asks for it.
    void PrintImage(const std::string& sImageName, std::int32_t lXPos = 1, std::int32_t lYPos = 1,
                    bool bInverse = false, bool bReload = false);
    /// Whether the settings carry raw bytes (8 data bits, no Xon/Xoff). Asks whether to adjust
    /// them, on the printer and on this side, when they do not.
    bool IsCommSetForImageLoad();
    /// Sends any file of this machine into the printer's storage. Raises 1013 and 1014 as
    /// InstallImage. sDevice has no effect: the printer decides where the file goes.
    void Fileload(const std::string& sFileName, std::string_view sDevice = {});

    // -- Files by a transfer protocol; what they raise is told in clsDataLink.h

    /// Sends a host file by Kermit in place of the printer's file of that name. The device that was
    /// current stays so. With bManual the user has started the printer's side and nothing is sent
    /// before the protocol.
    void KermitUpload(const std::string& sSource, const std::string& sDestination,
                      bool bManual = false);
    /// Receives a printer's file by Kermit into a host file.
    void KermitDownload(const std::string& sSource, const std::string& sDestination,
                        std::int32_t lFileSize = 0);
    /// Sends a host file over the open port to a printer that waits for it.
    void BinaryUpload(const std::string& sSource, std::int16_t iProtocol = BinaryZModem);
    /// Receives into a host file from a printer that is sending.
    void BinaryDownload(const std::string& sDestination, std::int16_t iProtocol = BinaryZModem);

  private:
    using Reply = std::vector<std::string>;
    using AddRow = std::function<bool(PrinterFiles&, std::string_view)>;
    struct Exchange;
    struct FileLoad;
    struct Listing;

    /// Exchange.cpp
    clsDataLink& Link() const;
    PortClaim Claim();
    std::optional<Reply> Run(const Exchange& exchange);
    void Send(std::string_view bytes);
    void SendLine(std::string_view line);
    Reply Read(std::int32_t timeout, bool checkErrors = true);
    Reply Ask(std::string_view line, std::int32_t timeout, bool checkErrors = true);
    bool Report(std::string& message, std::int16_t progress);
    bool Report(std::string&& message, std::int16_t progress) { return Report(message, progress); }
    void ReportDone(std::string message);
    MsgBoxResult AskPerson(const MsgBox& box);

    /// DeviceTable.cpp
    void InitFileSystem();
    bool Has(std::string_view name);
    std::shared_ptr<clsPrinterDevice> Device(std::string_view name);
    void IsValidPrinterDevice(std::string_view name);
    void SetDeviceDirty(std::string_view path);
    std::string GetCurrentDevice();
    bool IsExtendedModel();
    bool SystemLevelAllowed(bool flag);
    std::string OnWorkDevice(std::string_view name);

    /// Listings.cpp
    bool ModelLists();
    std::shared_ptr<PrinterFiles> ParseRows(const std::string& device, const Reply& reply,
                                            std::size_t first, const Listing& listing);
    static void ParseBytesLine(clsPrinterDevice& device, const Reply& reply);
    bool ListInto(const Listing& listing);
    void FilterBitmapFonts(PrinterFiles& fonts);
    void FillFontFilter();
    void KeepFontDefaults(qncomm::RegSettings& settings, const std::vector<SettingValue>& defaults);

    /// ProgramControl.cpp
    void WithPlantedLine(const std::function<void()>& body);
    void RemovePlantedLine();
    bool TestRun();

    /// ModuleUpload.cpp
    void BeginTyping();
    Reply EndTyping();
    Reply TypeModule(const std::vector<std::string>& lines, std::string message);
    void GiveUpTyping();
    void TypeLines(const std::vector<std::string>& lines, std::string& message);
    void LinkModules(const Collection<std::string>& modules, std::string_view header);

    /// Transfers.cpp
    void ReplaceByKermit(const std::string& source, const std::string& destination);
    void MarkTheDevice(const std::string& destination);

    /// Images.cpp, RawFiles.cpp
    bool IsValidPcxImage(const std::string& path);
    void RequireImageFile(const std::string& path);
    [[noreturn]] static void RefuseImage(PortClaim& claim, std::int32_t number);
    bool CarriesRawBytes();
    void AdjustSettings();
    void LoadFile(const FileLoad& load);
    void GiveUpLoad();

    clsDataLink* mLink;
    Desktop& mDesktop;
    HostFiles& mFiles;
    std::shared_ptr<PrinterDeviceTable> mPrinterDevices;
    bool mModelMissing = false;        ///< the table was built while no printer told its model
    std::int32_t mTableGeneration = 0; ///< in which the table was made
    std::shared_ptr<PrinterSetup> mPrinterSetupItems;
    Collection<std::string> mFontFilter;     ///< upper-case names, keyed by themselves
    std::unique_ptr<HostFile> mRefusedImage; ///< last found to be no image, kept open
};

} // namespace qncomm
