#include "testing/transfer/MemoryFiles.h"

#include "transfer/Crc32Sum.h"

#include <algorithm>
#include <array>
#include <random>

namespace qncomm::testing {

using namespace transfer;

std::optional<FileInfo> MemorySource::Next() {
    if (mNext >= mFiles.size()) return std::nullopt;
    FileInfo file;
    file.name = mFiles[mNext].name;
    file.size = mFiles[mNext].content.size();
    file.modified = 1700000000;
    file.mode = 0644;
    file.filesLeft = static_cast<std::uint32_t>(mFiles.size() - mNext);
    file.text = text;
    file.resume = resume;
    ++mNext;
    return file;
}

bool MemorySource::Read(std::uint64_t offset, std::size_t length, std::string& data,
                        std::string& sReason) {
    mFirstRead = std::min(mFirstRead, offset);
    if (failReadAt && offset + length > *failReadAt) {
        sReason = "the disk cannot be read";
        return false;
    }
    const std::string& content = mFiles[mNext - 1].content;
    if (offset < content.size()) data = content.substr(static_cast<std::size_t>(offset), length);
    return true;
}

OfferDecision MemorySink::Offer(const FileInfo& file) {
    mOffered.push_back(file);
    OfferDecision decision;
    if (!file.fromAnywhere) resumeFrom.clear();
    if (!skipName.empty() && file.name == skipName) {
        decision.kind = AnswerKind::Skip;
        return decision;
    }
    mOpen = {file.name, resumeFrom};
    decision.offset = resumeFrom.size();
    Crc32Sum sum;
    sum.Add(resumeFrom);
    decision.sum = sum.Value();
    return decision;
}

bool MemorySink::Write(std::uint64_t offset, std::string_view data, std::string& sReason) {
    if (failWriteAt && offset + data.size() > *failWriteAt) {
        sReason = "the disk is full";
        return false;
    }
    if (offset != mOpen.content.size()) gap = true;
    mOpen.content.append(data);
    return true;
}

bool MemorySink::Close(bool bWhole, std::string& sReason) {
    if (bWhole && failClose) {
        sReason = "the file cannot be renamed";
        return false;
    }
    (bWhole ? mWhole : mPartial).push_back(std::move(mOpen));
    mOpen = {};
    return true;
}

std::string RandomBytes(std::size_t size, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random() >> 56U); });
    return bytes;
}

std::string TextBytes(std::size_t size, std::uint64_t seed) {
    static constexpr std::array<std::string_view, 8> Words = {
        "label", "print", "the", "of", "barcode", "and", "position", "font"};
    std::mt19937_64 random(seed);
    std::string text;
    std::size_t column = 0;
    while (text.size() < size) {
        const auto word = Words[random() % Words.size()];
        text += word;
        column += word.size();
        text.push_back(column > 60 ? '\n' : ' ');
        if (column > 60) column = 0;
    }
    text.resize(size);
    return text;
}

} // namespace qncomm::testing
