// The tables of the records' fields, and what is made of them.

#include "Records.h"

#include "MemberArguments.h"
#include "MemberTypes.h"
#include "automation/CallMember.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <algorithm>

namespace qncomm {
namespace {

/// A field as the table shows it, and its way into a value and out of it.
template <class T>
struct Field {
    SurfaceMember shown;
    Variant (*get)(const T& record);
    void (*set)(T& record, const Variant& value);
};

template <class Member>
struct FieldShape;
template <class T, class V>
struct FieldShape<V T::*> {
    using Record = T;
    using Value = V;
};

const Variant& FieldNamed(const Variant::Record& record, std::string_view name) {
    const auto found = std::ranges::find_if(
        record, [&](const auto& field) { return EqualNoCase(field.first, name); });
    if (found == record.end()) RaiseRuntimeError(RtNoSuchMember);
    return found->second;
}

Variant ReadField(const SurfaceObject& object, const SurfaceMember& self,
                  MemberArguments& /*none*/) {
    return FieldNamed(object.Record(), self.name);
}

SurfaceMember FieldRow(std::int32_t id, std::string_view name, ShownType type) {
    return {id,          name, MemberKind::Get, MemberNeeds::Nothing, type.type,
            type.object, {},   &ReadField};
}

template <auto field, MemberType texts = MemberType::PrinterText>
auto FieldOf(std::int32_t id, std::string_view name) {
    using Record = typename FieldShape<decltype(field)>::Record;
    using Value = Shown<typename FieldShape<decltype(field)>::Value>;
    constexpr ShownType type =
        Value::type.type == MemberType::PrinterText ? ShownType{texts} : Value::type;
    constexpr TextKind kind = texts == MemberType::HostText ? TextKind::Host : TextKind::Line;
    return Field<Record>{FieldRow(id, name, type),
                         [](const Record& of) { return Value::To(of.*field, kind); },
                         [](Record& of, const Variant& value) {
                             of.*field = Value::From(ConvertedTo(type.type, value));
                         }};
}

/// What is known of a record: its fields, and which of them make its key in a collection.
template <class T>
struct RecordTable {
    std::vector<std::string_view> keyedBy;
    std::vector<Field<T>> fields;
};

template <class T>
RecordTable<T> TableOf();

template <>
RecordTable<clsPrinterFile> TableOf() {
    return {{"Name"},
            {FieldOf<&clsPrinterFile::Name>(1, "Name"), FieldOf<&clsPrinterFile::Size>(2, "Size")}};
}

template <>
RecordTable<clsPrinterDevice> TableOf() {
    return {{"Name"},
            {FieldOf<&clsPrinterDevice::Name>(1, "Name"),
             FieldOf<&clsPrinterDevice::BytesUsed>(2, "BytesUsed"),
             FieldOf<&clsPrinterDevice::BytesFree>(3, "BytesFree"),
             FieldOf<&clsPrinterDevice::Files>(4, "Files"),
             FieldOf<&clsPrinterDevice::Dirty>(5, "Dirty"),
             FieldOf<&clsPrinterDevice::Valid>(6, "Valid")}};
}

template <>
RecordTable<clsPrinterSetupItem> TableOf() {
    return {{"Key"},
            {FieldOf<&clsPrinterSetupItem::Key>(1, "Key"),
             FieldOf<&clsPrinterSetupItem::Value>(2, "Value")}};
}

template <>
RecordTable<clsQNModuleError> TableOf() {
    return {{"QNModuleName", "QNErrInLine"},
            {FieldOf<&clsQNModuleError::QNModuleName, MemberType::HostText>(1, "QNModuleName"),
             FieldOf<&clsQNModuleError::QNErrCode>(2, "QNErrCode"),
             FieldOf<&clsQNModuleError::QNErrInLine>(3, "QNErrInLine"),
             FieldOf<&clsQNModuleError::QNErrDesc>(4, "QNErrDesc"),
             FieldOf<&clsQNModuleError::QNText>(5, "QNText")}};
}

template <>
RecordTable<clsLiveFact> TableOf() {
    return {{"Name"},
            {FieldOf<&clsLiveFact::Name, MemberType::HostText>(1, "Name"),
             FieldOf<&clsLiveFact::Value, MemberType::HostText>(2, "Value"),
             FieldOf<&clsLiveFact::AgeMs>(3, "AgeMs"),
             FieldOf<&clsLiveFact::LearntFrom, MemberType::HostText>(4, "LearntFrom")}};
}

template <class T>
const RecordTable<T>& Table() {
    static const RecordTable<T> table = TableOf<T>();
    return table;
}

} // namespace

template <class T>
const SurfaceClass& RecordClass() {
    static const SurfaceClass of = [] {
        SurfaceClass made{RecordName<T>, {}, {}, true, Table<T>().keyedBy};
        for (const Field<T>& field : Table<T>().fields)
            made.members.push_back(field.shown);
        return made;
    }();
    return of;
}

const SurfaceClass& FontClass() {
    static const SurfaceClass of{
        Shown<TerminalFont>::type.object,
        {FieldRow(1, "Name", {MemberType::HostText}), FieldRow(2, "Size", {MemberType::Single})},
        {},
        true};
    return of;
}

template <class T>
Variant ListOf(const Collection<std::shared_ptr<T>>& records) {
    Variant::List list;
    for (const auto& record : records) {
        Variant::Record fields;
        for (const Field<T>& field : Table<T>().fields)
            fields.emplace_back(field.shown.name, field.get(*record));
        list.emplace_back(std::move(fields));
    }
    return Variant(std::move(list));
}

template <class T>
std::shared_ptr<Collection<std::shared_ptr<T>>> CollectionOf(const Variant::List& list) {
    auto records = std::make_shared<Collection<std::shared_ptr<T>>>();
    for (const Variant& item : list) {
        const auto* fields = item.As<Variant::Record>();
        if (fields == nullptr) RaiseRuntimeError(RtTypeMismatch);
        auto record = std::make_shared<T>();
        for (const Field<T>& field : Table<T>().fields)
            field.set(*record, FieldNamed(*fields, field.shown.name));
        records->Add(std::move(record), KeyOf(*fields, RecordClass<T>()));
    }
    return records;
}

std::string KeyOf(const Variant::Record& record, const SurfaceClass& of) {
    std::string key;
    for (const std::string_view field : of.keyedBy) {
        if (!key.empty()) key += ':';
        key += AsString(FieldNamed(record, field));
    }
    return key;
}

template const SurfaceClass& RecordClass<clsPrinterFile>();
template const SurfaceClass& RecordClass<clsPrinterDevice>();
template const SurfaceClass& RecordClass<clsPrinterSetupItem>();
template const SurfaceClass& RecordClass<clsQNModuleError>();
template const SurfaceClass& RecordClass<clsLiveFact>();
template Variant ListOf(const PrinterFiles&);
template Variant ListOf(const PrinterDeviceTable&);
template Variant ListOf(const PrinterSetup&);
template Variant ListOf(const ModuleErrors&);
template Variant ListOf(const LiveFacts&);
template std::shared_ptr<PrinterFiles> CollectionOf(const Variant::List&);
template std::shared_ptr<PrinterDeviceTable> CollectionOf(const Variant::List&);
template std::shared_ptr<PrinterSetup> CollectionOf(const Variant::List&);
template std::shared_ptr<ModuleErrors> CollectionOf(const Variant::List&);
template std::shared_ptr<LiveFacts> CollectionOf(const Variant::List&);

} // namespace qncomm
