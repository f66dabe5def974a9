// Values of a host in C: whatever it hands over is taken or refused with an error, and what was
// taken comes back to the host as a value that is taken as the same.

#include "Choices.h"
#include "Values.h"
#include "common/QNError.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm::fuzz {
namespace {

using bindings::HostValues;
using bindings::Values;

/// Values as the fuzzer's bytes have them, and what they point to.
class MadeValues {
  public:
    explicit MadeValues(Choices& choices) : mChoices(choices) {}

    qn_value Next(int depth = 0) {
        qn_value value = qn_nothing();
        const int kind = mChoices.Next() % 10;
        value.type = kind;
        switch (kind) {
        case QN_BOOLEAN:
        case QN_INTEGER:
            return qn_integer(mChoices.NextWord() - 0x7FFF);
        case QN_REAL:
            return qn_real(mChoices.NextWord() / 3.0);
        case QN_TEXT:
            value.as.text = Text();
            break;
        case QN_LIST:
            value.as.list = List(depth);
            break;
        case QN_RECORD:
            value.as.record = Record(depth);
            break;
        default: // nothing, a store that is none, or no type at all
            break;
        }
        return value;
    }

  private:
    bool IsNowhere() { return mChoices.Next() % 16 == 0; }

    qn_bytes Text() {
        const std::string_view text = mChoices.Text();
        return {IsNowhere() ? nullptr : text.data(), text.size()};
    }

    qn_list List(int depth) {
        const std::size_t count = mChoices.Next() % 4U;
        if (IsNowhere()) return {nullptr, count};
        auto& items = mItems.emplace_back(count);
        if (depth > 0 && mChoices.Next() == 0xFF && count > 0) { // a list that holds itself
            items.front().type = QN_LIST;
            items.front().as.list = {items.data(), count};
            return {items.data(), count};
        }
        for (qn_value& item : items)
            item = Next(depth + 1);
        return {items.data(), count};
    }

    qn_record Record(int depth) {
        const std::size_t count = mChoices.Next() % 4U;
        if (IsNowhere()) return {nullptr, count};
        auto& fields = mFields.emplace_back(count);
        for (qn_field& field : fields) {
            field.name = IsNowhere() ? nullptr : Name();
            field.value = Next(depth + 1);
        }
        return {fields.data(), count};
    }

    const char* Name() {
        static constexpr const char* known[] = {"Name", "Size", "Files", "other"};
        return known[mChoices.Next() % 4U];
    }

    Choices& mChoices;
    std::deque<std::vector<qn_value>> mItems;
    std::deque<std::vector<qn_field>> mFields;
};

void Check(Choices choices) {
    const qn_texts texts = choices.Next() % 2 == 0 ? QN_UTF8 : QN_8BIT;
    const auto type = static_cast<MemberType>(choices.Next() % 12);
    const std::string_view object = choices.Next() % 2 == 0 ? "" : "clsPrinterFile";
    MadeValues made(choices);
    const qn_value value = made.Next();
    try {
        const Variant taken = HostValues(texts).Taken(value, type, object);
        Values shown(texts);
        Promise(HostValues(texts).Taken(shown.Of(taken), type, object) == taken);
    } catch (const QNError& error) {
        Promise(error.Number() == 5);
    }
}

} // namespace
} // namespace qncomm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::fuzz::Check({data, size});
    return 0;
}
