#pragma once

#include <gtest/gtest.h>

#include "dispatch.h"

namespace hosts {

class Client : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(object_.dispatch(), nullptr) << "is the component registered?"; }

  Object object_;
};

}  // namespace hosts
