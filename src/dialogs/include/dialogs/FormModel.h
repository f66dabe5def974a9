#pragma once

#include "common/Event.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qncomm {

/// Who closes a form.
enum class UnloadMode : std::int16_t {
    ControlMenu = 0, ///< the user, by the window's close box
    FormCode = 1,    ///< the form itself, as one of its buttons does
    System = 2,      ///< the desktop shuts down
    TaskManager = 3, ///< another program asks for it
};

/// A dialog as a plain object: open from its construction until it is unloaded. A face shows its
/// control models while it is open, and must let go of them before the form is destroyed.
class FormModel {
  public:
    virtual ~FormModel() = default;
    FormModel(const FormModel&) = delete;
    FormModel& operator=(const FormModel&) = delete;

    /// The window's title (UTF-8). May change while the form is open.
    const std::string& Caption() const { return mCaption; }
    /// False once the form has been unloaded.
    bool IsOpen() const { return mOpen; }

    /// Closes the form unless it refuses; a closed form stays closed. Returns whether it is closed
    /// now. A face calls it for the window's close box and passes on what it raises.
    bool Unload(UnloadMode mode);

    /// The form has been unloaded; the face takes its window away.
    Event<> Closed;

  protected:
    /// An open form with that title.
    explicit FormModel(std::string_view sCaption) : mCaption(sCaption) {}

    /// Changes the title; a face reads it when it shows the form.
    void SetCaption(std::string_view sCaption) { mCaption = sCaption; }
    /// False refuses to close.
    virtual bool QueryUnload(UnloadMode mode);
    /// Connects a handler to an event of one of the form's controls for the form's life.
    template <class... Args, class Handler>
    void On(Event<Args...>& event, Handler handler) {
        mHandlers.push_back(event.Connect(std::move(handler)));
    }

  private:
    std::string mCaption;
    bool mOpen = true;
    std::vector<Subscription> mHandlers;
};

} // namespace qncomm
