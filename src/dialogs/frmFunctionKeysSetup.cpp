#include "dialogs/frmFunctionKeysSetup.h"

#include "common/ControlNames.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <utility>
#include <vector>

namespace qncomm {
namespace {

constexpr std::int16_t CtrlHeld = 2;
constexpr std::int16_t FirstNameKey = 65;
constexpr std::int16_t LastNameKey = 96;
constexpr std::int16_t NameKeyBase = 64; // this key less the base is the character's code

/// The kind to show: what is no number of a kind shows as a text, so that its argument can be
/// edited.
FunctionKeyKind ShownKind(const std::string& field) {
    try {
        const std::int32_t number = ToInt32(Val(field));
        if (number >= TextMacro && number <= RunMacro) return static_cast<FunctionKeyKind>(number);
    } catch (const QNError&) { // NOLINT(bugprone-empty-catch): a number beyond all bounds
    }
    return TextMacro;
}

std::vector<FileFilter> FiltersFor(std::int32_t kind) {
    const FileFilter all{"All Files (*.*)", "*.*"};
    if (kind == RunMacro) return {{"Executables (*.exe)", "*.exe"}, all};
    return {{"Text Files (*.txt)", "*.txt"}, all};
}

} // namespace

frmFunctionKeysSetup::frmFunctionKeysSetup(std::shared_ptr<qncomm::RegSettings> settings,
                                           FileDialogs& files)
    : FormModel("Function Keys Setup"), mRegSettings(std::move(settings)), mFiles(files) {
    for (std::size_t i = 0; i < KeyCount; ++i) {
        FunctionKeyPanel& panel = pic1[i];
        On(panel.cmbAlt.Clicked, [this, &panel] { cmbAlt_Click(panel); });
        On(panel.cmdAlt.Clicked, [this, &panel] { cmdAlt_Click(panel); });
        LoadPanel(i);
    }
    On(SSTab1.Clicked, [this](std::size_t former) { SSTab1_Click(former); });
    On(Command1[0].Clicked, [this] { Ok_Click(); });
    On(Command1[1].Clicked, [this] { Unload(UnloadMode::FormCode); });
}

void frmFunctionKeysSetup::LoadPanel(std::size_t index) {
    FunctionKeyPanel& panel = pic1[index];
    const std::string key(FunctionKeys[index]);
    SSTab1.SetCaption(index, key);
    panel.lblALT.SetCaption("On CTRL+Shift+" + key + "...");
    panel.cmbAlt.SetEntries({{"Text:", TextMacro}, {"File:", FileMacro}, {"Run:", RunMacro}});
    const MacroRecord record = ReadMacro(mRegSettings.get(), key);
    panel.cmbAlt.SelectValue(ShownKind(record.kind));
    panel.txtAlt.SetText(record.argument);
    cmbAlt_Click(panel);
    panel.SetVisible(index == SSTab1.Tab());
}

void frmFunctionKeysSetup::SSTab1_Click(std::size_t formerTab) {
    pic1[formerTab].SetVisible(false);
    pic1[SSTab1.Tab()].SetVisible(true);
}

void frmFunctionKeysSetup::cmbAlt_Click(FunctionKeyPanel& panel) {
    const bool isText = panel.cmbAlt.ListIndex() == TextMacro;
    panel.cmdAlt.SetVisible(!isText);
    panel.txtAlt.SetKind(isText ? TextKind::Line : TextKind::Host);
}

void frmFunctionKeysSetup::cmdAlt_Click(FunctionKeyPanel& panel) {
    FileDialog dialog;
    dialog.filters = FiltersFor(panel.cmbAlt.ListIndex());
    const auto chosen = mFiles.ChooseFile(dialog);
    if (!chosen) return;
    const bool quote =
        panel.cmbAlt.ListIndex() == RunMacro && chosen->find(' ') != std::string::npos;
    panel.txtAlt.SetText(quote ? "\"" + *chosen + "\"" : *chosen);
}

void frmFunctionKeysSetup::Form_KeyDown(std::int16_t& iKeyCode, std::int16_t& iShift) {
    FunctionKeyPanel& panel = pic1[SSTab1.Tab()];
    if (panel.cmbAlt.ListIndex() != TextMacro || (iShift & CtrlHeld) == 0) return;
    if (iKeyCode < FirstNameKey || iKeyCode > LastNameKey) return;
    const auto place = static_cast<std::size_t>(iKeyCode - NameKeyBase);
    if (place < ControlCharacterNames.size())
        panel.txtAlt.InsertAtCursor("<" + std::string(ControlCharacterNames[place]) + ">");
    iKeyCode = iShift = 0;
}

void frmFunctionKeysSetup::Ok_Click() {
    if (!mRegSettings) RaiseRuntimeError(RtObjectNotSet, "frmFunctionKeysSetup");
    std::vector<SettingValue> values;
    for (std::size_t i = 0; i < KeyCount; ++i)
        values.push_back(MacroSetting(FunctionKeys[i],
                                      static_cast<FunctionKeyKind>(pic1[i].cmbAlt.ListIndex()),
                                      pic1[i].txtAlt.Text()));
    mRegSettings->WriteValues(values);
    Unload(UnloadMode::FormCode);
}

} // namespace qncomm
