#pragma once

#include "Records.h"
#include "automation/SurfaceMember.h"
#include "common/Collection.h"
#include "control/TerminalFont.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qncomm {

// What the types of C++ are in the table, and the way of a value from one to the other and back. A
// type that the table does not know does not compile.

/// How a type of C++ stands in the table.
struct ShownType {
    MemberType type = MemberType::Nothing;
    std::string_view object = {};
};

/// The type in the table and the value in a variant that has been converted to it.
template <class T>
struct Shown;

template <>
struct Shown<void> {
    static constexpr ShownType type{};
};

template <>
struct Shown<bool> {
    static constexpr ShownType type{MemberType::Boolean};
    static bool From(const Variant& value) { return AsBoolean(value); }
    static Variant To(bool value, TextKind /*of texts*/) { return value; }
};

template <>
struct Shown<std::int16_t> {
    static constexpr ShownType type{MemberType::Integer};
    static std::int16_t From(const Variant& value) { return AsInteger(value); }
    static Variant To(std::int16_t value, TextKind /*of texts*/) { return value; }
};

template <>
struct Shown<std::int32_t> {
    static constexpr ShownType type{MemberType::Long};
    static std::int32_t From(const Variant& value) { return AsLong(value); }
    static Variant To(std::int32_t value, TextKind /*of texts*/) { return value; }
};

/// A row says of its texts that are this machine's own.
template <>
struct Shown<std::string> {
    static constexpr ShownType type{MemberType::PrinterText};
    static std::string From(const Variant& value) { return AsString(value); }
    static Variant To(const std::string& value, TextKind kind) { return Variant(value, kind); }
};

template <>
struct Shown<std::string_view> : Shown<std::string> {};

/// A text or a position as it is.
template <>
struct Shown<Variant> {
    static constexpr ShownType type{MemberType::KeyIndex};
    static Variant From(const Variant& value) { return value; }
};

template <>
struct Shown<std::vector<std::string>> {
    static constexpr ShownType type{MemberType::Names};
    static std::vector<std::string> From(const Variant& value) {
        std::vector<std::string> texts;
        for (const Variant& text : *value.As<Variant::List>())
            texts.push_back(AsString(text));
        return texts;
    }
    static Variant To(const std::vector<std::string>& value, TextKind kind) {
        Variant::List list;
        for (const std::string& text : value)
            list.emplace_back(text, kind);
        return Variant(std::move(list));
    }
};

template <>
struct Shown<Collection<std::string>> {
    static constexpr ShownType type{MemberType::Names};
    static Collection<std::string> From(const Variant& value) {
        Collection<std::string> names;
        for (const std::string& name : Shown<std::vector<std::string>>::From(value))
            names.Add(name);
        return names;
    }
};

template <>
struct Shown<TerminalFont> {
    static constexpr ShownType type{MemberType::Font, "TerminalFont"};
    static TerminalFont From(const Variant& value) { return AsFont(value); }
    static Variant To(const TerminalFont& value, TextKind /*of texts*/) {
        return FontRecord(value);
    }
};

template <>
struct Shown<std::shared_ptr<RegSettings>> {
    static constexpr ShownType type{MemberType::Settings, "RegSettings"};
    static std::shared_ptr<RegSettings> From(const Variant& value) {
        return *value.As<std::shared_ptr<RegSettings>>();
    }
    static Variant To(const std::shared_ptr<RegSettings>& value, TextKind /*of texts*/) {
        return value ? Variant(value) : Variant();
    }
};

/// A collection of records; nothing for none.
template <class T>
struct Shown<std::shared_ptr<Collection<std::shared_ptr<T>>>> {
    using Records = Collection<std::shared_ptr<T>>;
    static constexpr ShownType type{MemberType::Records, RecordName<T>};
    static std::shared_ptr<Records> From(const Variant& value) {
        return CollectionOf<T>(*value.As<Variant::List>());
    }
    static Variant To(const std::shared_ptr<Records>& value, TextKind /*of texts*/) {
        return value ? ListOf(*value) : Variant();
    }
};

} // namespace qncomm
