#pragma once

#include <functional>

namespace vorla {

/// The door through which the capture path reports what the user did. The statistics stand behind
/// it once they are started; until then, and in a build without them, events are dropped. The
/// receiver runs on the thread that fires, and may set another receiver. Any thread.
void fireStatisticEvent(int number);

/// Sets who hears the events; an empty function drops them again. A call that another thread has
/// already begun may still reach the receiver that was set before.
void setStatisticReceiver(std::function<void(int)> receiver);

}  // namespace vorla
