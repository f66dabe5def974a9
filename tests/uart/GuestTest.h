#pragma once

#include "Guest.h"

#include <gtest/gtest.h>

#include <memory>

namespace qncomm::testing {

/// One guest for all tests of a suite: it takes longer to boot than they take.
class GuestTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { sGuest = std::make_unique<Guest>(); }
    static void TearDownTestSuite() { sGuest.reset(); }
    static Guest& TheGuest() { return *sGuest; }

  private:
    inline static std::unique_ptr<Guest> sGuest;
};

} // namespace qncomm::testing
