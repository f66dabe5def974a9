#include "language/FileTable.h"

#include "Text.h"

#include <algorithm>

namespace qnsim {
namespace {

constexpr std::size_t MostOpen = 16;

} // namespace

std::optional<int> FileTable::Channel(std::string_view path) {
    const std::string name = Upper(Trim(path));
    const bool channel = name.size() == 6 && name.starts_with("UART") && name.back() == ':';
    if (!channel || name[4] < '1' || name[4] > '9') return std::nullopt;
    return name[4] - '0';
}

Error FileTable::Open(int number, std::string_view path, char mode) {
    if (mFiles.count(number) != 0) return Error::FileNumberInUse;
    if (mFiles.size() >= MostOpen) return Error::TooManyFiles;
    OpenFile file{std::string(path), mode, 0, {}, 0};
    if (const auto channel = Channel(path)) {
        if (*channel > mMachine.model.uarts) return Error::DeviceNotFound;
        if (mode == 'I') return Error::BadFileMode;
        file.channel = *channel;
        mFiles.emplace(number, std::move(file));
        return Error::None;
    }
    const FilePlace place = mMachine.storage.Locate(path);
    if (place.error != Error::None) return place.error;
    // The device is fixed now, wherever the current directory goes later.
    file.path = place.device->name + place.name;
    const StoredFile* stored = mMachine.storage.Find(file.path);
    if (mode == 'I' && stored == nullptr) return Error::FileNotFound;
    if (mode != 'O' && stored != nullptr) file.content = stored->content;
    if (mode != 'I') {
        const Error error = mMachine.storage.Write(file.path, file.content);
        if (error != Error::None) return error;
    }
    mFiles.emplace(number, std::move(file));
    return Error::None;
}

FileTable::OpenFile* FileTable::Find(int number, bool forInput, Error& error) {
    const auto found = mFiles.find(number);
    if (found == mFiles.end()) {
        error = Error::FileNotOpen;
        return nullptr;
    }
    if ((found->second.mode == 'I') == forInput) return &found->second;
    error = Error::BadFileMode;
    return nullptr;
}

Error FileTable::Write(int number, std::string_view bytes) {
    Error error = Error::None;
    OpenFile* file = Find(number, false, error);
    if (file == nullptr) return error;
    if (file->channel != 0) {
        if (file->channel == mMachine.wiredUart) mMachine.out += bytes;
        return Error::None;
    }
    const FilePlace place = mMachine.storage.Locate(file->path);
    const StoredFile* stored = mMachine.storage.Find(file->path);
    const std::uint64_t replaced = stored == nullptr ? 0 : stored->content.size();
    if (file->content.size() + bytes.size() > place.device->Free() + replaced)
        return Error::DeviceFull;
    file->content += bytes;
    return Error::None;
}

FileTable::Reading FileTable::ReadLine(int number) {
    Reading reading;
    OpenFile* file = Find(number, true, reading.error);
    if (file == nullptr) return reading;
    if (file->at >= file->content.size()) {
        reading.error = Error::InputPastEnd;
        return reading;
    }
    const auto end = std::min(file->content.find('\n', file->at), file->content.size());
    reading.text = file->content.substr(file->at, end - file->at);
    if (!reading.text.empty() && reading.text.back() == '\r') reading.text.pop_back();
    file->at = end + 1;
    return reading;
}

FileTable::Reading FileTable::ReadField(int number) {
    Reading reading;
    OpenFile* file = Find(number, true, reading.error);
    if (file == nullptr) return reading;
    const std::size_t start = file->at;
    reading = ReadLine(number);
    bool quoted = false;
    for (std::size_t i = 0; i < reading.text.size(); ++i) {
        if (reading.text[i] == '"') quoted = !quoted;
        if (reading.text[i] != ',' || quoted) continue;
        reading.text.resize(i);
        file->at = start + i + 1;
    }
    const std::string_view field = Trim(reading.text);
    const bool inQuotes = field.size() >= 2 && field.front() == '"' && field.back() == '"';
    reading.text = std::string(inQuotes ? field.substr(1, field.size() - 2) : field);
    return reading;
}

Error FileTable::Close(int number) {
    const auto found = mFiles.find(number);
    if (found == mFiles.end()) return Error::FileNotOpen;
    const OpenFile file = std::move(found->second);
    mFiles.erase(found);
    if (file.channel != 0 || file.mode == 'I') return Error::None;
    return mMachine.storage.Write(file.path, file.content);
}

void FileTable::CloseAll() {
    while (!mFiles.empty())
        Close(mFiles.begin()->first);
}

} // namespace qnsim
