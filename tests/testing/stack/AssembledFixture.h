#pragma once

#include "testing/stack/AssemblyRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {

class AssembledFixture : public ::testing::Test, protected AssemblyRig {};

} // namespace qncomm::testing
