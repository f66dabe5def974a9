#include "HostFiles.h"

#include <filesystem>

namespace qncomm::bench {

using transfer::FileInfo;
using transfer::OfferDecision;

std::optional<FileInfo> HostSource::Next() {
    if (mNext >= mNames.size()) return std::nullopt;
    FileInfo file;
    file.name = mNames[mNext];
    file.size = std::filesystem::file_size(file.name);
    file.filesLeft = static_cast<std::uint32_t>(mNames.size() - mNext);
    mFile.reset(std::fopen(file.name.c_str(), "rbe"));
    ++mNext;
    return file;
}

bool HostSource::Read(std::uint64_t offset, std::size_t length, std::string& data,
                      std::string& sReason) {
    if (!mFile || std::fseek(mFile.get(), static_cast<long>(offset), SEEK_SET) != 0) {
        sReason = "the file cannot be read";
        return false;
    }
    data.resize(length);
    data.resize(std::fread(data.data(), 1, length, mFile.get()));
    return true;
}

void HostSource::Close(bool) {
    mFile.reset();
}

OfferDecision HostSink::Offer(const FileInfo& file) {
    mFile.reset(std::fopen(file.name.c_str(), "wbe"));
    return {};
}

bool HostSink::Write(std::uint64_t, std::string_view data, std::string& sReason) {
    if (mFile && std::fwrite(data.data(), 1, data.size(), mFile.get()) == data.size()) return true;
    sReason = "the file cannot be written";
    return false;
}

bool HostSink::Close(bool, std::string&) {
    mFile.reset();
    return true;
}

} // namespace qncomm::bench
