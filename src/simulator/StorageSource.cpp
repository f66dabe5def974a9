#include "StorageSource.h"

#include <algorithm>
#include <utility>

namespace qnsim {

StorageSource::StorageSource(std::string name, std::string content)
    : mName(std::move(name)), mContent(std::move(content)) {}

std::optional<qncomm::transfer::FileInfo> StorageSource::Next() {
    if (mGiven) return std::nullopt;
    mGiven = true;
    qncomm::transfer::FileInfo file;
    file.name = mName;
    file.size = mContent.size();
    file.filesLeft = 1;
    return file;
}

bool StorageSource::Read(std::uint64_t offset, std::size_t length, std::string& data,
                         std::string& /*sReason*/) {
    const auto at = static_cast<std::size_t>(std::min<std::uint64_t>(offset, mContent.size()));
    data.assign(mContent, at, length);
    return true;
}

} // namespace qnsim
