#include "Setup.h"

#include "Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qnsim {
namespace {

constexpr int ItemsOfASection = 16;
constexpr std::string_view SwitchValues = "ENABLE|DISABLE";
constexpr std::array<std::pair<char, std::string_view>, 5> ParityNames{
    {{'n', "NONE"}, {'e', "EVEN"}, {'o', "ODD"}, {'m', "MARK"}, {'s', "SPACE"}}};

std::string_view ParityName(char letter) {
    const auto* found = std::find_if(ParityNames.begin(), ParityNames.end(),
                                     [letter](const auto& entry) { return entry.first == letter; });
    return found == ParityNames.end() ? ParityNames.front().second : found->second;
}

bool InRange(std::string_view allowed, std::string_view value) {
    if (value.empty() || value.size() > 6
        || value.find_first_not_of("0123456789") != std::string_view::npos) {
        return false;
    }
    const auto dash = allowed.find('-');
    const double number = TextNumber(value);
    return number >= TextNumber(allowed.substr(0, dash))
           && number <= TextNumber(allowed.substr(dash + 1));
}

} // namespace

SetupTree::SetupTree(const Model& model, const Options& options) {
    Add("SYSTEM,MODEL", std::string(model.code), "");
    if (!options.moods.longSetup) AddChannels(model, options);
    const int widthMm = 104;
    Add("LABEL,WIDTH", std::to_string(widthMm * model.dotsPerMm), "1-4096");
    Add("LABEL,LENGTH", std::to_string(60 * model.dotsPerMm), "1-8192");
    Add("LABEL,MARGIN", "0", "0-4096");
    Add("LABEL,DARKNESS", "50", "0-100");
    Add("LABEL,SPEED", "100", "50-200");
    Add("MEDIA,TYPE", "GAP", "GAP|MARK|CONTINUOUS");
    Add("MEDIA,FEED ADJUST", "0", "0-999");
    if (!options.moods.longSetup) return;
    AddUnknownSections();
    AddChannels(model, options);
}

void SetupTree::AddUnknownSections() {
    for (const std::string_view section :
         {"PANEL", "CUTTER", "SENSOR", "BUFFER", "REMOTE", "LOG"}) {
        for (int item = 1; item <= ItemsOfASection; ++item) {
            const std::string path = std::string(section) + ",GROUP " + std::to_string(item) + ",";
            Add(path + "LEVEL", std::to_string(item), "0-999");
            Add(path + "STATE", "OK", ""); // the word, but no end of a reply
        }
    }
}

void SetupTree::AddChannels(const Model& model, const Options& options) {
    for (int channel = 1; channel <= std::max(model.uarts, options.uart); ++channel)
        AddChannel(channel, options);
}

void SetupTree::Add(std::string path, std::string value, std::string allowed) {
    mItems.push_back({std::move(path), std::move(value), std::move(allowed)});
}

void SetupTree::AddChannel(int number, const Options& options) {
    const std::string path = "SER-COM,UART" + std::to_string(number) + ",";
    const bool wired = number == options.uart;
    const std::string off = "DISABLE";
    Add(path + "BAUDRATE", std::to_string(wired ? options.baud : 9600),
        "300|600|1200|2400|4800|9600|19200|38400|57600|115200");
    Add(path + "PARITY", std::string(ParityName(wired ? options.parity : 'n')),
        "NONE|EVEN|ODD|MARK|SPACE");
    Add(path + "CHAR LENGTH", std::to_string(wired ? options.dataBits : 8), "7|8");
    Add(path + "STOPBITS", std::to_string(wired ? options.stopBits : 2), "1|2");
    Add(path + "FLOWCONTROL,RTS/CTS", off, std::string(SwitchValues));
    Add(path + "FLOWCONTROL,XON/XOFF,DATA TO HOST", off, std::string(SwitchValues));
    Add(path + "FLOWCONTROL,XON/XOFF,DATA FROM HOST", off, std::string(SwitchValues));
    Add(path + "NEW LINE", "CR/LF", "CR/LF|CR|LF");
}

SetupTree::Item* SetupTree::Find(std::string_view path) {
    const std::string full = "SER-COM," + std::string(path);
    const auto found = std::find_if(mItems.begin(), mItems.end(), [&](const Item& item) {
        return item.path == path || item.path == full;
    });
    return found == mItems.end() ? nullptr : &*found;
}

bool SetupTree::Allows(const Item& item, std::string_view value) {
    const std::string_view allowed = item.allowed;
    if (allowed.find('|') == std::string_view::npos && allowed.find('-') != std::string_view::npos)
        return InRange(allowed, value);
    const auto choices = Split(allowed, '|');
    return !allowed.empty() && std::find(choices.begin(), choices.end(), value) != choices.end();
}

Error SetupTree::Change(std::string_view pathAndValue) {
    const auto comma = pathAndValue.rfind(',');
    if (comma == std::string_view::npos) return Error::SetupItemUnknown;
    Item* item = Find(Upper(Trim(pathAndValue.substr(0, comma))));
    if (item == nullptr) return Error::SetupItemUnknown;
    const std::string value = Upper(Trim(pathAndValue.substr(comma + 1)));
    if (!Allows(*item, value)) return Error::SetupValueBad;
    item->value = value;
    return Error::None;
}

Error SetupTree::Load(std::string_view fileText) {
    SetupTree changed = *this;
    for (std::string_view line : Split(fileText, '\n')) {
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        line = Trim(line);
        if (line.empty() || line.front() == '#') continue;
        const Error error = changed.Change(line);
        if (error != Error::None) return error;
    }
    *this = std::move(changed);
    return Error::None;
}

std::string SetupTree::Write() const {
    std::string text;
    for (const Item& item : mItems) {
        if (item.allowed.empty()) text += '#';
        text += item.path + "," + item.value + "\r\n";
    }
    return text;
}

const std::string& SetupTree::Value(std::string_view path) const {
    static const std::string none;
    const auto found = std::find_if(mItems.begin(), mItems.end(),
                                    [&](const Item& item) { return item.path == path; });
    return found == mItems.end() ? none : found->value;
}

int SetupTree::Number(std::string_view path) const {
    return static_cast<int>(TextNumber(Value(path)));
}

Uart SetupTree::Channel(int number) const {
    const std::string path = "SER-COM,UART" + std::to_string(number) + ",";
    const std::string& parity = Value(path + "PARITY");
    Uart uart;
    uart.baud = Number(path + "BAUDRATE");
    uart.dataBits = Number(path + "CHAR LENGTH");
    uart.stopBits = Number(path + "STOPBITS");
    uart.parity = parity.empty() ? 'n' : static_cast<char>(parity.front() - 'A' + 'a');
    uart.rtsCts = Value(path + "FLOWCONTROL,RTS/CTS") == "ENABLE";
    uart.obeysXon = Value(path + "FLOWCONTROL,XON/XOFF,DATA TO HOST") == "ENABLE";
    uart.sendsXon = Value(path + "FLOWCONTROL,XON/XOFF,DATA FROM HOST") == "ENABLE";
    return uart;
}

} // namespace qnsim
