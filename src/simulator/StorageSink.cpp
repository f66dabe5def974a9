#include "StorageSink.h"

#include <utility>

namespace qnsim {
namespace {

using qncomm::transfer::AnswerKind;
using qncomm::transfer::FileInfo;
using qncomm::transfer::OfferDecision;

/// The last part of a name that a sender gave, without its folders and its device.
std::string_view LastPart(std::string_view name) {
    const auto end = name.find_last_of("/\\:");
    return end == std::string_view::npos ? name : name.substr(end + 1);
}

/// Lines as the printer keeps them, each ended by CR LF.
std::string WithPrinterLineEnds(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

} // namespace

bool StorageSink::Refuse(Error error, std::string& sReason) {
    mRefusal = error;
    sReason = ErrorText(error);
    return false;
}

OfferDecision StorageSink::Offer(const FileInfo& file) {
    OfferDecision decision;
    decision.kind = AnswerKind::Failed;
    const FilePlace place = mStorage.Locate(LastPart(file.name));
    if (place.error != Error::None) {
        Refuse(place.error, decision.reason);
        return decision;
    }
    const auto old = place.device->files.find(place.name);
    const bool replaces = old != place.device->files.end();
    mRoom = place.device->Free() + (replaces ? old->second.content.size() : 0);
    mPath = place.device->name + place.name;
    mContent.clear();
    mText = file.text;
    if (place.device->readOnly) {
        Refuse(Error::WriteProtected, decision.reason);
    } else if (file.size.value_or(0) > mRoom) {
        Refuse(Error::DeviceFull, decision.reason);
    } else {
        decision.kind = AnswerKind::Ok;
    }
    return decision;
}

bool StorageSink::Write(std::uint64_t /*offset*/, std::string_view data, std::string& sReason) {
    if (data.size() > mRoom - mContent.size()) return Refuse(Error::DeviceFull, sReason);
    mContent += data;
    return true;
}

bool StorageSink::Close(bool bWhole, std::string& sReason) {
    std::string content = std::exchange(mContent, {});
    if (!bWhole) return true;
    if (mText) content = WithPrinterLineEnds(content);
    const Error error = mStorage.Write(mPath, std::move(content));
    return error == Error::None || Refuse(error, sReason);
}

} // namespace qnsim
