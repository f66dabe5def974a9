#pragma once

#include "Jobs.h"

#include <deque>
#include <memory>
#include <qncomm/qncomm.h>
#include <string>
#include <vector>

namespace qncomm::testing {

/// An event that is heard, with what hears it.
struct HeardEvent {
    Heard* heard;
    std::string name;
};

/// Arguments as a host in C gives them; they live as long as this.
class GivenValues {
  public:
    /// A record of no fields stands for the store.
    explicit GivenValues(qn_settings* store) : mStore(store) {}
    qn_value Of(const Json& value);

  private:
    qn_value RecordOf(const Json& value);

    qn_settings* mStore;
    std::deque<std::string> mTexts;
    std::deque<std::vector<qn_value>> mLists;
    std::deque<std::vector<qn_field>> mFields;
};

/// What both ways of calling have in common.
class CDoor : public Door {
  public:
    explicit CDoor(const Json& job);
    ~CDoor() override;
    CDoor(const CDoor&) = delete;
    CDoor& operator=(const CDoor&) = delete;

    void Show(bool shown) override;

  protected:
    qn_control* Control() const { return mControl; }
    qn_settings* Store() const { return mStore; }
    /// The error of the last call.
    Json Failure() const;
    static Json JsonOfValue(const qn_value& value);

  private:
    qn_settings* mStore;
    qn_control* mControl = nullptr;
    std::deque<HeardEvent> mEvents;
};

std::unique_ptr<Door> MakeGenericDoor(const Json& job);
std::unique_ptr<Door> MakeTypedDoor(const Json& job);

} // namespace qncomm::testing
