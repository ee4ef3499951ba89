#pragma once

namespace velk::platform {

/// Whether the process is ending: its other threads are gone wherever they were, the loader's lock is held,
/// and other modules may have ended. Nothing is to be closed or waited for any more; the system does it.
bool processIsEnding();

}  // namespace velk::platform
