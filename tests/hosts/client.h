#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "dispatch.h"

namespace hosts {

/// A TCP port that the runner tells; ports above 32767 are negative numbers to the component.
inline int toldPort(const char* variable) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? 0 : static_cast<short>(std::atoi(text));
}

class Client : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(object_.dispatch(), nullptr) << "is the component registered?"; }

  Object object_;
};

}  // namespace hosts
