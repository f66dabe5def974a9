#include "common/Event.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace qncomm {
namespace {

TEST(Event, HandlersRunInOrderAndMayChangeTheArguments) {
    Event<std::string&, bool&> event;
    const Subscription first = event.Connect([](std::string& text, bool&) { text += "1"; });
    const Subscription second = event.Connect([](std::string& text, bool& cancel) {
        text += "2";
        cancel = true;
    });
    std::string text;
    bool cancel = false;
    event.Raise(text, cancel);
    EXPECT_EQ(text, "12");
    EXPECT_TRUE(cancel);
}

TEST(Event, AHandlerEndsWithItsSubscription) {
    Event<> event;
    int calls = 0;
    {
        const Subscription connected = event.Connect([&] { ++calls; });
        event.Raise();
    }
    event.Raise();
    EXPECT_EQ(calls, 1);
}

TEST(Event, HandlersMayDisconnectEachOtherAndConnectWhileItIsRaised) {
    Event<> event;
    int later = 0;
    Subscription second;
    Subscription added;
    const Subscription first = event.Connect([&] {
        second.Reset();
        if (!added) added = event.Connect([&] { later += 10; });
    });
    second = event.Connect([&] { ++later; });
    event.Raise();
    EXPECT_EQ(later, 0);
    event.Raise();
    EXPECT_EQ(later, 10);
}

TEST(Event, ASubscriptionMayOutliveItsEvent) {
    std::optional<Event<>> event(std::in_place);
    const Subscription connected = event->Connect([] {});
    event.reset();
    EXPECT_TRUE(connected);
}

} // namespace
} // namespace qncomm
