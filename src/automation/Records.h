#pragma once

#include "automation/SurfaceClass.h"
#include "control/clsLiveFact.h"
#include "printer/clsPrinterDevice.h"
#include "printer/clsPrinterFile.h"
#include "printer/clsPrinterSetupItem.h"
#include "printer/clsQNModuleError.h"

#include <memory>
#include <string>
#include <string_view>

namespace qncomm {

// The records of the printer as values that any language can take. Each has a table of its fields
// in Records.cpp.

/// A record's class as the table names it.
template <class T>
inline constexpr std::string_view RecordName = {};
template <>
inline constexpr std::string_view RecordName<clsPrinterFile> = "clsPrinterFile";
template <>
inline constexpr std::string_view RecordName<clsPrinterDevice> = "clsPrinterDevice";
template <>
inline constexpr std::string_view RecordName<clsPrinterSetupItem> = "clsPrinterSetupItem";
template <>
inline constexpr std::string_view RecordName<clsQNModuleError> = "clsQNModuleError";
template <>
inline constexpr std::string_view RecordName<clsLiveFact> = "clsLiveFact";

/// The records in their order.
template <class T>
Variant ListOf(const Collection<std::shared_ptr<T>>& records);

/// The records of a list, with their keys. Raises 13 for what is no record, 438 for a field that
/// is missing and 457 for a key that comes twice.
template <class T>
std::shared_ptr<Collection<std::shared_ptr<T>>> CollectionOf(const Variant::List& list);

/// The key of a record in its collection; empty when its class has none. Raises 438 for a record of
/// another class.
std::string KeyOf(const Variant::Record& record, const SurfaceClass& of);

/// The class of a record.
template <class T>
const SurfaceClass& RecordClass();
/// The class of a font.
const SurfaceClass& FontClass();

} // namespace qncomm
