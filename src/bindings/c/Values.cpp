#include "Values.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "common/Utf8.h"

#include <algorithm>
#include <utility>

namespace qncomm::bindings {
namespace {

constexpr std::size_t MostValues = 200'000; ///< of one call
constexpr int DeepestList = 8;              ///< a list of a host may hold itself

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character first = FirstOfUtf8(text);
        if (!first.valid || first.size == 0) return false;
        text.remove_prefix(first.size);
    }
    return true;
}

qn_value TextOf(const std::string& text) {
    return qn_bytes_of(text.c_str(), text.size());
}

/// Raises 5 where a host says that there is something and gives no place.
void NeedsPlace(const void* place, std::size_t count) {
    if (place == nullptr && count > 0) RaiseRuntimeError(RtInvalidCall);
}

/// The type of a record's field; a text of this machine for a name that its class lacks.
MemberType TypeOfField(std::string_view object, std::string_view name) {
    if (object.empty()) return MemberType::HostText;
    for (const SurfaceMember& field : ClassNamed(object).members)
        if (EqualNoCase(field.name, name)) return field.result;
    return MemberType::HostText;
}

} // namespace

qn_value Values::Of(const Variant& value) {
    if (const auto* truth = value.As<bool>()) return qn_boolean(*truth ? 1 : 0);
    if (const auto* integer = value.As<std::int32_t>()) return qn_integer(*integer);
    if (const auto* real = value.As<double>()) return qn_real(*real);
    if (const auto* text = value.As<VariantText>()) return OfText(*text);
    if (const auto* list = value.As<Variant::List>()) return OfList(*list);
    if (const auto* record = value.As<Variant::Record>()) return OfRecord(*record);
    const auto* store = value.As<std::shared_ptr<RegSettings>>();
    if (store == nullptr || *store == nullptr) return qn_nothing();
    return qn_store(&mStores.emplace_back(qn_settings{*store}));
}

qn_value Values::OfText(const VariantText& text) {
    const bool isLine = text.kind == TextKind::Line;
    if (isLine ? mTexts == QN_8BIT || IsAscii(text.text) : IsUtf8(text.text))
        return TextOf(text.text);
    return TextOf(mConverted.emplace_back(Utf8FromPrinter(text.text)));
}

qn_value Values::OfList(const Variant::List& list) {
    std::vector<qn_value> items;
    items.reserve(list.size());
    for (const Variant& item : list)
        items.push_back(Of(item));
    const auto& kept = mLists.emplace_back(std::move(items));
    return qn_list_of(kept.data(), kept.size());
}

qn_value Values::OfRecord(const Variant::Record& record) {
    std::vector<qn_field> fields;
    fields.reserve(record.size());
    for (const auto& [name, value] : record)
        fields.push_back({name.c_str(), Of(value)});
    const auto& kept = mRecords.emplace_back(std::move(fields));
    qn_value value = qn_nothing();
    value.type = QN_RECORD;
    value.as.record = {kept.data(), kept.size()};
    return value;
}

std::string Values::Shown(std::string_view sText) {
    return IsUtf8(sText) ? std::string(sText) : Utf8FromPrinter(sText);
}

Variant HostValues::Taken(const qn_value& value, MemberType type, std::string_view object) {
    if (++mCount > MostValues || mDepth > DeepestList) RaiseRuntimeError(RtInvalidCall);
    switch (value.type) {
    case QN_NOTHING:
        return {};
    case QN_BOOLEAN:
        return value.as.boolean != 0;
    case QN_INTEGER:
        return value.as.integer;
    case QN_REAL:
        return value.as.real;
    case QN_TEXT:
        return TakenText(value.as.text, type);
    case QN_SETTINGS:
        if (value.as.settings == nullptr) break;
        return Variant(value.as.settings->store);
    case QN_LIST:
        return TakenList(value.as.list, type, object);
    case QN_RECORD:
        return TakenRecord(value.as.record, object);
    }
    RaiseRuntimeError(RtInvalidCall);
}

Variant HostValues::TakenText(const qn_bytes& text, MemberType type) const {
    NeedsPlace(text.bytes, text.length);
    const std::string_view bytes(text.bytes, text.length);
    if (type == MemberType::PrinterText || type == MemberType::Names) {
        if (mTexts == QN_8BIT || IsAscii(bytes)) return Variant(bytes, TextKind::Line);
        const auto line = PrinterFromUtf8(bytes);
        if (!line) RaiseRuntimeError(RtInvalidCall);
        return Variant(*line, TextKind::Line);
    }
    if (bytes.find('\0') != std::string_view::npos || !IsUtf8(bytes))
        RaiseRuntimeError(RtInvalidCall);
    return Variant(bytes);
}

Variant HostValues::TakenList(const qn_list& list, MemberType type, std::string_view object) {
    NeedsPlace(list.items, list.count);
    if (list.count > MostValues) RaiseRuntimeError(RtInvalidCall);
    ++mDepth;
    Variant::List items;
    items.reserve(list.count);
    for (std::size_t i = 0; i < list.count; ++i)
        items.push_back(Taken(list.items[i], type, object));
    --mDepth;
    return Variant(std::move(items));
}

Variant HostValues::TakenRecord(const qn_record& record, std::string_view object) {
    NeedsPlace(record.fields, record.count);
    if (record.count > MostValues) RaiseRuntimeError(RtInvalidCall);
    ++mDepth;
    Variant::Record fields;
    for (std::size_t i = 0; i < record.count; ++i) {
        const qn_field& field = record.fields[i];
        NeedsPlace(field.name, 1);
        const MemberType type = TypeOfField(object, field.name);
        fields.emplace_back(field.name, Taken(field.value, type, {}));
    }
    --mDepth;
    return Variant(std::move(fields));
}

} // namespace qncomm::bindings
