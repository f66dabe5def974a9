// The control as a host in C has it: its members by name, or each by its own function.
//
//   conformance_c generic|typed

#include "CDoor.h"

#include <iostream>
#include <qncomm/qncomm.h>
#include <string>
#include <string_view>

namespace qncomm::testing {
namespace {

Json JsonOf(const qn_value& value) {
    switch (value.type) {
    case QN_BOOLEAN:
        return value.as.boolean != 0;
    case QN_INTEGER:
        return value.as.integer;
    case QN_REAL:
        return value.as.real;
    case QN_TEXT:
        return std::string(value.as.text.bytes, value.as.text.length);
    case QN_SETTINGS:
        return "(the settings)";
    case QN_LIST: {
        Json items = Json::array();
        for (std::size_t i = 0; i < value.as.list.count; ++i)
            items.push_back(JsonOf(value.as.list.items[i]));
        return items;
    }
    case QN_RECORD: {
        Json fields = Json::object();
        for (std::size_t i = 0; i < value.as.record.count; ++i)
            fields[value.as.record.fields[i].name] = JsonOf(value.as.record.fields[i].value);
        return fields;
    }
    default:
        return nullptr;
    }
}

int HearEvent(void* user, qn_value* arguments, std::size_t count) {
    const auto& event = *static_cast<const HeardEvent*>(user);
    Json values = Json::array();
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(JsonOf(arguments[i]));
    event.heard->events.push_back({event.name, values});
    return 0;
}

void HearLine(void* user, std::int64_t /*ms*/, int kind, qn_bytes bytes) {
    auto& heard = *static_cast<Heard*>(user);
    if (kind > 1) return;
    Append(kind == 0 ? heard.sent : heard.received, {bytes.bytes, bytes.length});
}

} // namespace

CDoor::CDoor(const Json& job) : mStore(qn_settings_memory()) {
    qn_options options{};
    options.size = sizeof(options);
    options.remembered = 1;
    options.listen = 1;
    mControl = qn_create(&options);
    qn_bind(mControl, 1, job.at("address").get<std::string>().c_str());
    qn_on_trace(mControl, HearLine, &heard);
    for (const Json& name : job.at("events")) {
        const HeardEvent& event = mEvents.emplace_back(HeardEvent{&heard, name});
        qn_on(mControl, event.name.c_str(), HearEvent, const_cast<HeardEvent*>(&event));
    }
}

CDoor::~CDoor() {
    qn_settings_free(mStore);
    qn_free(mControl);
}

void CDoor::Show(bool shown) {
    qn_show(mControl, shown ? 1 : 0);
}

Json CDoor::Failure() const {
    return {{"error", ErrorDocument(qn_error_number(mControl), qn_error_source(mControl),
                                    qn_error_description(mControl))}};
}

Json CDoor::JsonOfValue(const qn_value& value) {
    return JsonOf(value);
}

qn_value GivenValues::Of(const Json& value) {
    if (value.is_boolean()) return qn_boolean(value.get<bool>() ? 1 : 0);
    if (value.is_number_integer()) return qn_integer(value.get<std::int32_t>());
    if (value.is_number_float()) return qn_real(value.get<double>());
    if (value.is_string()) {
        const std::string& text = mTexts.emplace_back(value);
        return qn_bytes_of(text.c_str(), text.size());
    }
    if (value.is_array()) {
        std::vector<qn_value> items;
        for (const Json& item : value)
            items.push_back(Of(item));
        const auto& kept = mLists.emplace_back(std::move(items));
        return qn_list_of(kept.data(), kept.size());
    }
    if (value.is_object() && value.empty()) return qn_store(mStore);
    return value.is_object() ? RecordOf(value) : qn_nothing();
}

qn_value GivenValues::RecordOf(const Json& value) {
    std::vector<qn_field> fields;
    for (const auto& [name, field] : value.items())
        fields.push_back({mTexts.emplace_back(name).c_str(), Of(field)});
    const auto& kept = mFields.emplace_back(std::move(fields));
    qn_value record = qn_nothing();
    record.type = QN_RECORD;
    record.as.record = {kept.data(), kept.size()};
    return record;
}

} // namespace qncomm::testing

int main(int argc, char** argv) {
    using namespace qncomm::testing;
    const bool typed = argc > 1 && std::string_view(argv[1]) == "typed";
    RunJobs(std::cin, std::cout,
            [typed](const Json& job) { return typed ? MakeTypedDoor(job) : MakeGenericDoor(job); });
}
