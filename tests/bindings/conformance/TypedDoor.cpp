// Each member by its own function, whose types the compiler takes from its declaration.

#include "CDoor.h"

#include <functional>
#include <limits>
#include <map>
#include <qncomm/members.h>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace qncomm::testing {
namespace {

/// The compiler would not take what a call gives there.
struct Unsaid {};

/// The arguments of one call on their way into a function and back out of it.
class Places {
  public:
    Places(const Json& member, const Json& arguments, qn_settings* store)
        : mMember(member), mArguments(arguments), mStore(store), mGiven(store) {
        if (arguments.size() > member.at("parameters").size()) throw Unsaid();
    }

    /// The next argument of the function.
    template <class T>
    T Next() {
        const std::size_t at = mNext++;
        if constexpr (std::is_same_v<T, qn_settings*>) {
            return Store(at);
        } else if constexpr (std::is_same_v<T, const char*>) {
            return Text(at);
        } else if constexpr (std::is_same_v<T, const qn_value*>) {
            return ArgumentAt(at).is_null() ? nullptr : &Kept(mGiven.Of(ArgumentAt(at)));
        } else if constexpr (std::is_pointer_v<T>) {
            return Place<std::remove_pointer_t<T>>(at);
        } else {
            return Number<T>(at);
        }
    }

    Json Documents() const {
        Json document{{"result", nullptr}, {"back", Json::object()}, {"error", nullptr}};
        for (const auto& [name, take] : mBack)
            if (name.empty())
                document["result"] = take();
            else
                document["back"][name] = take();
        return document;
    }

  private:
    const Json& Parameters() const { return mMember.at("parameters"); }
    /// An object that is an argument of its own stands before those of the member.
    std::size_t Objects() const { return mMember.at("class") == "RegSettings" ? 1 : 0; }
    bool IsResult(std::size_t at) const { return at - Objects() == Parameters().size(); }

    const Json& ArgumentAt(std::size_t at) const {
        static const Json none;
        const std::size_t place = at - Objects();
        return place < mArguments.size() ? mArguments[place] : none;
    }

    qn_settings* Store(std::size_t at) const {
        if (at < Objects()) return mStore;
        if (ArgumentAt(at).is_null()) return nullptr;
        return ArgumentAt(at).is_object() ? mStore : throw Unsaid();
    }

    const char* Text(std::size_t at) {
        const Json& argument = ArgumentAt(at);
        if (argument.is_null()) return nullptr;
        return argument.is_string() ? mGiven.Of(argument).as.text.bytes : throw Unsaid();
    }

    /// A number, or what the member's page says of one that is left out.
    template <class T>
    T Number(std::size_t at) const {
        Json argument = ArgumentAt(at);
        if (argument.is_null()) {
            const Json& usual = Parameters()[at - Objects()].at("default");
            if (!usual.is_string()) throw Unsaid();
            argument = usual == "True"    ? Json(true)
                       : usual == "False" ? Json(false)
                                          : Json::parse(std::string(usual));
        }
        if (argument.is_boolean()) return argument.get<bool>() ? 1 : 0;
        if (!argument.is_number()) throw Unsaid();
        const auto number = argument.get<double>();
        if (number > static_cast<double>(std::numeric_limits<T>::max())) throw Unsaid();
        return static_cast<T>(number);
    }

    qn_value& Kept(const qn_value& value) { return mValues.emplace_back(value); }

    /// Where something comes back: the result, or through an argument that goes in as well.
    template <class T>
    T* Place(std::size_t at) {
        if (!IsResult(at) && ArgumentAt(at).is_null()) return nullptr;
        const std::string type =
            IsResult(at) ? mMember.at("result") : Parameters()[at - Objects()].at("type");
        const std::string name = IsResult(at) ? "" : Parameters()[at - Objects()].at("name");
        T* place = nullptr;
        if constexpr (std::is_same_v<T, qn_value>) {
            place = &Kept(IsResult(at) ? qn_nothing() : mGiven.Of(ArgumentAt(at)));
            mBack.emplace_back(name, [place] { return JsonOf(*place); });
        } else if constexpr (std::is_same_v<T, const char*>) {
            place = &mTexts.emplace_back(IsResult(at) ? nullptr : Text(at));
            mBack.emplace_back(name, [place] { return Json(std::string(*place)); });
        } else {
            auto& numbers = std::get<std::deque<T>>(mNumbers);
            place = &numbers.emplace_back(IsResult(at) ? T{} : Number<T>(at));
            mBack.emplace_back(name, [place, type] {
                return type == "boolean" ? Json(*place != 0) : Json(*place);
            });
        }
        return place;
    }

    static Json JsonOf(const qn_value& value);

    const Json& mMember;
    const Json& mArguments;
    qn_settings* mStore;
    GivenValues mGiven;
    std::size_t mNext = 0;
    std::deque<qn_value> mValues;
    std::deque<const char*> mTexts;
    std::tuple<std::deque<std::int16_t>, std::deque<std::int32_t>, std::deque<double>> mNumbers;
    std::deque<std::pair<std::string, std::function<Json()>>> mBack;
};

using TypedCall = std::function<int(qn_control*, Places&)>;

template <class... Arguments>
TypedCall Typed(int (*function)(qn_control*, Arguments...)) {
    return [function](qn_control* control, Places& places) {
        // Braces, because they keep the order.
        std::tuple<Arguments...> arguments{places.Next<Arguments>()...};
        return std::apply(function, std::tuple_cat(std::tuple(control), arguments));
    };
}

const std::map<std::string, TypedCall>& TypedCalls() {
    static const std::map<std::string, TypedCall> calls{
#define FUNCTION(member, function) {member, Typed(&qn_##function)},
#include "functions.inc"
#undef FUNCTION
    };
    return calls;
}

class TypedDoor final : public CDoor {
  public:
    using CDoor::CDoor;
    using CDoor::JsonOfValue;

    Json Call(const Json& member, const Json& arguments) override {
        const std::string name = std::string(member.at("class")) + "."
                                 + std::string(member.at("name")) + "."
                                 + std::string(member.at("kind"));
        try {
            Places places(member, arguments, Store());
            if (TypedCalls().at(name)(Control(), places) != QN_OK) return Failure();
            return places.Documents();
        } catch (const Unsaid&) {
            return {{"unsaid", true}};
        }
    }
};

Json Places::JsonOf(const qn_value& value) {
    return TypedDoor::JsonOfValue(value);
}

} // namespace

std::unique_ptr<Door> MakeTypedDoor(const Json& job) {
    return std::make_unique<TypedDoor>(job);
}

} // namespace qncomm::testing
