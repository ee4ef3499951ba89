#pragma once

#include "platform/windows/handle.h"
// The base types come first.
#include <ws2tcpip.h>
