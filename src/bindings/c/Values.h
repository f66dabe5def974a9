#pragma once

#include "automation/CallMember.h"
#include "common/RegSettings.h"
#include "qncomm/qncomm.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What a host holds of a store.
struct qn_settings {
    std::shared_ptr<qncomm::RegSettings> store;
};

namespace qncomm::bindings {

// The way of a value from the library to a host and back. What comes from a host is believed in
// nothing but its addresses.

/// Values as a host sees them. They point into the variants that they were made of, which must live
/// as long, and into what this object keeps.
class Values {
  public:
    /// Texts are written so.
    explicit Values(qn_texts texts) : mTexts(texts) {}

    /// The value as the host sees it.
    qn_value Of(const Variant& value);
    /// A text that a person is shown as valid UTF-8, whatever it was made of.
    static std::string Shown(std::string_view sText);

  private:
    qn_value OfText(const VariantText& text);
    qn_value OfList(const Variant::List& list);
    qn_value OfRecord(const Variant::Record& record);

    qn_texts mTexts;
    std::deque<std::string> mConverted;
    std::deque<std::vector<qn_value>> mLists;
    std::deque<std::vector<qn_field>> mRecords;
    std::deque<qn_settings> mStores;
};

/// Reads one call's arguments. Raises 5 for a text or list that cannot be, and for more than a
/// call may have.
class HostValues {
  public:
    /// Texts are written so.
    explicit HostValues(qn_texts texts) : mTexts(texts) {}

    /// The value of a host for something of that type; object is the class of records, if it is of
    /// any.
    Variant Taken(const qn_value& value, MemberType type, std::string_view object);

  private:
    Variant TakenText(const qn_bytes& text, MemberType type) const;
    Variant TakenList(const qn_list& list, MemberType type, std::string_view object);
    Variant TakenRecord(const qn_record& record, std::string_view object);

    qn_texts mTexts;
    std::size_t mCount = 0; ///< values so far, those in lists included
    int mDepth = 0;
};

} // namespace qncomm::bindings
