#pragma once

#include "testing/stack/ControlDesk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {

class AssembledFixture : public ::testing::Test, protected ControlDesk {};

} // namespace qncomm::testing
