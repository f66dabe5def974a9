#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace qncomm {

/// Keeps a handler connected to an event while it lives. May outlive the event.
class Subscription {
  public:
    Subscription() = default;
    /// Connected to nothing when the slot is empty. Event::Connect makes it.
    explicit Subscription(std::shared_ptr<void> slot) : mSlot(std::move(slot)) {}

    /// Disconnects now.
    void Reset() { mSlot.reset(); }
    /// Whether it keeps a handler connected, as far as the event still lives.
    explicit operator bool() const { return mSlot != nullptr; }

  private:
    std::shared_ptr<void> mSlot;
};

/// Calls its handlers in the order in which they were connected, on the caller's thread. Handlers
/// may connect and disconnect, themselves included, while the event is being raised. An error that
/// a handler raises goes to the raiser.
template <class... Args>
class Event {
  public:
    /// What is called when the event is raised.
    using Handler = std::function<void(Args...)>;

    /// The handler stays connected as long as the returned object lives.
    [[nodiscard]] Subscription Connect(Handler handler) {
        auto slot = std::make_shared<Handler>(std::move(handler));
        std::erase_if(mSlots, [](const auto& known) { return known.expired(); });
        mSlots.push_back(slot);
        return Subscription(std::move(slot));
    }

    /// Calls the handlers that are connected now. Passes on what a handler throws; those behind it
    /// are then not called.
    void Raise(Args... args) const {
        const auto connected = mSlots; ///< handlers may connect others
        for (const auto& weak : connected)
            if (const auto slot = weak.lock()) (*slot)(args...);
    }

  private:
    std::vector<std::weak_ptr<Handler>> mSlots;
};

} // namespace qncomm
