#pragma once

#include "common/QNError.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace qncomm::testing {

/// What a call raises, as "number source"; empty when it raises nothing.
inline std::string RaisedBy(const std::function<void()>& call) {
    try {
        call();
    } catch (const QNError& error) {
        return std::to_string(error.Number()) + " " + error.Source();
    }
    return {};
}

/// The number of what a call raises, 0 when it raises nothing.
inline int NumberRaisedBy(const std::function<void()>& call) {
    try {
        call();
    } catch (const QNError& error) {
        return error.Number();
    }
    return 0;
}

} // namespace qncomm::testing

/// The statement raises a QNError of this number.
#define EXPECT_RAISED(statement, number)                                                           \
    EXPECT_EQ(::qncomm::testing::NumberRaisedBy([&] { static_cast<void>(statement); }), number)    \
        << #statement
/// The statement raises a QNError whose number and source read as given, such as "1001 DataLink:Let
/// Baudrate".
#define EXPECT_RAISED_FROM(statement, numberAndSource)                                             \
    EXPECT_EQ(::qncomm::testing::RaisedBy([&] { static_cast<void>(statement); }), numberAndSource) \
        << #statement
