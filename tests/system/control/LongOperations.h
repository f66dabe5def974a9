#pragma once

#include "testing/stack/AssembledFixture.h"

#include "common/QNError.h"

#include <algorithm>
#include <ostream>

namespace qncomm::testing {

/// An operation of the control that takes long enough for its host to do something meanwhile.
struct LongOperation {
    const char* name;
    /// Brings a fresh control and its printer to where the operation makes sense.
    void (*prepare)(AssemblyRig& rig);
    /// Runs it. The control may have gone when it returns.
    void (*run)(AssemblyRig& rig, QNComm& control);
    /// What came of it, so that two runs can be compared; the control is still there.
    std::string (*outcome)(AssemblyRig& rig);
};

inline std::ostream& operator<<(std::ostream& out, const LongOperation& operation) {
    return out << operation.name;
}

/// All of them.
const std::vector<LongOperation>& LongOperations();

/// A host that does something within the events of a long operation.
class WithinEvents : public AssembledFixture, public ::testing::WithParamInterface<LongOperation> {
  protected:
    /// A fresh control, ready for the operation.
    void Prepare() {
        Assemble("sim:R7G?boot-ms=2000");
        GetParam().prepare(*this);
    }

    /// Runs the operation and acts within its event number iAt, counted from 1, or within each for
    /// 0. What the operation makes of a control that ends is its own business.
    void Run(int iAt, const std::function<void()>& act) {
        mEvents = 0;
        mRaised = 0;
        bool acting = false;
        const auto onEvent = [this, iAt, &act, &acting] {
            if (acting) return; // an event of what the act does
            ++mEvents;
            if (iAt != 0 && mEvents != iAt) return;
            acting = true;
            act();
            acting = false;
        };
        QNComm& control = Control();
        const Subscription status =
            control.StatusEvent.Connect([&](std::string&, std::int16_t, bool&) { onEvent(); });
        const Subscription state = control.PortStateEvent.Connect([&](bool&) { onEvent(); });
        try {
            GetParam().run(*this, control);
        } catch (const QNError& error) {
            mRaised = error.Number();
        }
    }

    /// How many events the operation has when nobody disturbs it.
    int CountEvents() {
        Prepare();
        Run(0, [] {});
        EXPECT_EQ(mRaised, 0);
        return mEvents;
    }

    /// The first and the last events, and some of those between.
    static std::vector<int> Chosen(int events) {
        std::vector<int> chosen;
        const int step = std::max(1, events / 8);
        for (int at = 1; at <= events; at += at < 4 || at > events - 4 ? 1 : step)
            chosen.push_back(at);
        return chosen;
    }

    void ExpectUsable() {
        EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
        EXPECT_TRUE(Control().DoAutoconnect());
        EXPECT_EQ(Control().PrinterType(), "R7G");
        EXPECT_NE(Control().Files("c:", true), nullptr);
        EXPECT_EQ(mAssembly->Serial().Tag(), "");
    }

    int mEvents = 0;
    int mRaised = 0; ///< the number of what the operation raised
};

} // namespace qncomm::testing
