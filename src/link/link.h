#pragma once

#include "link/settings.h"
#include "platform/host.h"
#include "values/result.h"

namespace velk::link {

/// What every transaction needs: the object's settings and the thread's port, socket and clock.
struct Link {
  Settings& settings;
  platform::Host& host;
};

}  // namespace velk::link
