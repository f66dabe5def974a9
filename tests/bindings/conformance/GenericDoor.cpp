// Members by their names, with tagged values.

#include "CDoor.h"

#include <algorithm>
#include <string>
#include <vector>

namespace qncomm::testing {
namespace {

class GenericDoor final : public CDoor {
  public:
    using CDoor::CDoor;

    Json Call(const Json& member, const Json& arguments) override {
        const std::string of = member.at("class");
        GivenValues given(Store());
        std::vector<qn_value> values;
        if (of == "RegSettings") values.push_back(qn_store(Store()));
        const std::size_t first = values.size();
        for (const Json& argument : arguments)
            values.push_back(given.Of(argument));
        const std::string name = of + "." + std::string(member.at("name"));
        qn_value result = qn_nothing();
        if (qn_call(Control(), name.c_str(), values.data(), values.size(), &result) != QN_OK)
            return Failure();
        Json back = Json::object();
        const Json& parameters = member.at("parameters");
        for (std::size_t i = first; i < std::min(values.size(), first + parameters.size()); ++i)
            if (parameters[i - first].at("back"))
                back[parameters[i - first].at("name")] = JsonOfValue(values[i]);
        return {{"result", JsonOfValue(result)}, {"back", back}, {"error", nullptr}};
    }
};

} // namespace

std::unique_ptr<Door> MakeGenericDoor(const Json& job) {
    return std::make_unique<GenericDoor>(job);
}

} // namespace qncomm::testing
