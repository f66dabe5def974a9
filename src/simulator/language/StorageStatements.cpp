// Files, setup, fonts and images: what the printer keeps, and how it lists it.
#include "Text.h"
#include "label/BuiltInFonts.h"
#include "label/Pcx.h"
#include "language/Interpreter.h"

#include <algorithm>
#include <limits>

namespace qnsim {
namespace {

constexpr std::size_t NameWidth = 20;
constexpr std::size_t SizeWidth = 10;
constexpr int LargestPayload = std::numeric_limits<int>::max();

std::string Row(std::string_view name, std::string_view size) {
    // At least two blanks stand between a name and what follows it.
    std::string row(name);
    const std::size_t width = std::max(NameWidth, name.size() + 2) + SizeWidth;
    row.append(std::max<std::size_t>(width - name.size() - std::min(size.size(), SizeWidth), 2),
               ' ');
    return row + std::string(size);
}

std::string TwoColumns(const std::vector<std::string>& rows, int columns) {
    std::string text;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const bool left = columns == 2 && i % 2 == 0 && i + 1 < rows.size();
        text += rows[i] + (left ? "    " : "\r\n");
    }
    return text;
}

} // namespace

void Interpreter::Kill(const Statement& statement) {
    const std::string path = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() == Error::None) Fail(mMachine.storage.Kill(path));
}

void Interpreter::Copy(const Statement& statement) {
    const std::string source = mEvaluator.Text(statement.args[0]);
    const std::string target = mEvaluator.Text(statement.args[1]);
    if (mEvaluator.Failure() == Error::None) Fail(mMachine.storage.Copy(source, target));
}

void Interpreter::ChangeDirectory(const Statement& statement) {
    const std::string device = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() == Error::None) Fail(mMachine.storage.ChangeDirectory(device));
}

void Interpreter::Format(const Statement& statement) {
    const std::string device = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() == Error::None)
        Fail(mMachine.storage.Format(device, statement.number == 1));
}

void Interpreter::Files(const Statement& statement) {
    const std::string name =
        statement.args[0].IsPresent() ? mEvaluator.Text(statement.args[0]) : std::string();
    if (mEvaluator.Failure() != Error::None || !mMachine.model.listsFiles) return;
    const Device* device = mMachine.storage.FindDevice(name);
    if (device == nullptr) return Fail(Error::DeviceNotFound);
    mMachine.out += "FILES ON " + device->name + "\r\n";
    Listing(*device, statement.number == 1);
}

void Interpreter::Listing(const Device& device, bool systemToo) {
    std::vector<std::string> rows;
    for (const auto& [name, file] : device.files) {
        if (systemToo || !file.system)
            rows.push_back(Row(name, std::to_string(file.content.size())));
    }
    mMachine.out += TwoColumns(rows, mMachine.model.listingColumns);
    WriteBytesLine(device);
}

void Interpreter::WriteBytesLine(const Device& device) {
    mMachine.out += std::to_string(device.Free()) + " BYTES FREE  " + std::to_string(device.used)
                    + " BYTES USED\r\n";
}

void Interpreter::Setup(const Statement& statement) {
    const std::string text = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() != Error::None) return;
    if (text.find(',') != std::string::npos) {
        Fail(mMachine.setup.Change(text));
    } else {
        const StoredFile* file = mMachine.storage.Find(text);
        Fail(file == nullptr ? Error::FileNotFound : mMachine.setup.Load(file->content));
    }
    mMachine.setupChanged = true;
}

void Interpreter::SetupWrite(const Statement& statement) {
    const std::string path = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() != Error::None) return;
    const auto channel = FileTable::Channel(path);
    if (!channel) return Fail(mMachine.storage.Write(path, mMachine.setup.Write()));
    if (*channel > mMachine.model.uarts) return Fail(Error::DeviceNotFound);
    if (*channel == mMachine.wiredUart) mMachine.out += mMachine.setup.Write();
}

void Interpreter::Fonts(const Statement& /*statement*/) {
    if (!mMachine.model.listsFiles) return;
    const Device& device = *mMachine.storage.FindDevice("fonts:");
    std::vector<std::string> names;
    for (const std::string_view name : BuiltInFontNames())
        names.emplace_back(name);
    for (const auto& [name, file] : device.files)
        names.push_back(name);
    const int columns = mMachine.model.listingColumns;
    for (std::size_t i = 0; columns == 2 && i + 1 < names.size(); i += 2)
        names[i].resize(std::max(NameWidth, names[i].size()), ' ');
    mMachine.out += TwoColumns(names, columns);
    WriteBytesLine(device);
}

void Interpreter::Images(const Statement& /*statement*/) {
    if (mMachine.model.listsFiles) Listing(*mMachine.storage.FindDevice("images:"), true);
}

void Interpreter::RemoveFont(const Statement& statement) {
    const std::string name = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() != Error::None) return;
    if (IsBuiltInFont(name)) return Fail(Error::WriteProtected);
    const Error error = mMachine.storage.KillOn(*mMachine.storage.FindDevice("fonts:"), name);
    Fail(error == Error::FileNotFound ? Error::FontNotFound : error);
}

void Interpreter::RemoveImage(const Statement& statement) {
    const std::string name = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() != Error::None) return;
    const Error error = mMachine.storage.KillOn(*mMachine.storage.FindDevice("images:"), name);
    Fail(error == Error::FileNotFound ? Error::ImageNotFound : error);
}

void Interpreter::ImageLoad(const Statement& statement) {
    AwaitData(statement, true);
}

void Interpreter::FileLoad(const Statement& statement) {
    AwaitData(statement, false);
}

void Interpreter::AwaitData(const Statement& statement, bool image) {
    mData = {};
    mData.image = image;
    mData.name = mEvaluator.Text(statement.args[0]);
    mData.missing =
        static_cast<std::size_t>(mEvaluator.Whole(statement.args[1], 0, LargestPayload));
    if (statement.args.size() > 2 && statement.args[2].IsPresent())
        mData.permanent = Upper(mEvaluator.Text(statement.args[2])) == "S";
    if (mEvaluator.Failure() != Error::None) return;
    // A load that cannot be kept still takes its bytes, so that they are not read as commands.
    std::uint64_t room = 0;
    for (const Device* device : mMachine.storage.Devices())
        room = std::max(room, device->size);
    mData.room = static_cast<std::size_t>(room);
    mData.tooLarge = mData.missing > mData.room;
    mState = State::NeedsData;
    if (mData.missing == 0) StoreData();
}

std::size_t Interpreter::TakeData(std::string_view bytes) {
    if (mState != State::NeedsData) return 0;
    const std::size_t count = std::min(bytes.size(), mData.missing);
    if (!mData.tooLarge) mData.bytes += bytes.substr(0, count);
    mData.missing -= count;
    if (mData.missing == 0) StoreData();
    return count;
}

void Interpreter::StoreData() {
    mState = State::Running;
    const std::size_t at = mAt - 1;
    const DataWait data = std::move(mData);
    mData = {};
    const bool font = data.image && IsScalableFont(data.bytes);
    Storage& storage = mMachine.storage;
    if (data.tooLarge) {
        Fail(Error::DeviceFull);
    } else if (!data.image) {
        Fail(storage.Write(data.name, data.bytes));
    } else if (font && !mMachine.model.trueType) {
        Fail(Error::NotAFont);
    } else if (!font && !ReadPcx(data.bytes)) {
        Fail(Error::NotAnImage);
    } else {
        Device& device = *storage.FindDevice(font ? "fonts:" : "images:");
        const FilePlace place = storage.Locate(device.name + data.name);
        Fail(place.error != Error::None
                 ? place.error
                 : storage.WriteTo(device, place.name, {data.bytes, false, data.permanent}));
    }
    if (mEvaluator.Failure() != Error::None) HandleFailure((*mCode)[at], at);
}

void Interpreter::DataTimedOut() {
    if (mState != State::NeedsData) return;
    mState = State::Running;
    mData = {};
    Fail(Error::DataTimeout);
    HandleFailure((*mCode)[mAt - 1], mAt - 1);
}

} // namespace qnsim
