#include "SentLedger.h"

#include "common/HostPath.h"
#include "platform/FileOpening.h"
#include "platform/SystemFiles.h"

#include <nlohmann/json.hpp>

#include <array>
#include <filesystem>

namespace qnctl {
namespace {

using Json = nlohmann::ordered_json;

/// Bytes of a ledger that is read; a hundred thousand files take less.
constexpr std::uint64_t LargestLedger = 32ULL << 20U;

std::string AbsoluteOf(const std::string& folder) {
    std::error_code error;
    const auto path = std::filesystem::canonical(folder, error);
    return error ? folder : path.string();
}

} // namespace

std::string SumOf(const std::string& sBytes) {
    // FNV-1a of 64 bits: it tells an edit from none, and nobody here is to be kept from forging.
    std::uint64_t sum = 0xcbf29ce484222325ULL;
    constexpr std::uint64_t prime = 0x100000001b3ULL;
    for (const char byte : sBytes)
        sum = (sum ^ static_cast<unsigned char>(byte)) * prime;
    constexpr std::array digits{'0', '1', '2', '3', '4', '5', '6', '7',
                                '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
    std::string text;
    for (unsigned shift = 64; shift > 0; shift -= 4)
        text += digits[(sum >> (shift - 4)) & 0xFU];
    return text;
}

SentLedger::SentLedger(const std::string& sUnder, const std::string& sAddress,
                       const std::string& sDevice, const std::string& sFolder)
    : mOf(sAddress + " " + sDevice + " " + AbsoluteOf(sFolder)) {
    mPath = qncomm::PathIn(sUnder, "sent/" + SumOf(mOf) + ".json");
    std::string text;
    if (!qncomm::ReadWholeFile(mPath, {.limit = LargestLedger}, text).Ok()) return;
    const Json document = Json::parse(text, nullptr, false);
    if (!document.is_object() || document.value("of", "") != mOf) return;
    const Json files = document.value("files", Json::object());
    for (const auto& [name, entry] : files.items()) {
        if (!entry.is_object()) continue;
        try {
            mFiles[name] = {entry.at("size"), entry.at("modified"), entry.at("sum"),
                            entry.at("onPrinter")};
        } catch (const Json::exception&) {
            mFiles.erase(name); // sent once more
        }
    }
}

const SentFile* SentLedger::Find(const std::string& sName) const {
    const auto found = mFiles.find(sName);
    return found == mFiles.end() ? nullptr : &found->second;
}

void SentLedger::Save() const {
    Json files = Json::object();
    for (const auto& [name, file] : mFiles)
        files[name] = {{"size", file.size},
                       {"modified", file.modified},
                       {"sum", file.sum},
                       {"onPrinter", file.onPrinter}};
    std::error_code ignored; // Save tells
    std::filesystem::create_directories(qncomm::FolderOf(mPath), ignored);
    qncomm::SystemFiles().Save(mPath, Json{{"of", mOf}, {"files", files}}.dump(1) + "\n");
}

} // namespace qnctl
