#pragma once

namespace vorla {

/// Makes sure that there is a QApplication that views can live in, and that the main queue runs on
/// its event loop. A host without one gets one that lives until the process ends; a host on the
/// GLib main loop then drives it without further calls. The window server must be known to answer:
/// the toolkit ends the process when it finds none.
///
/// False, with a log line, when the host has an application object without widgets, or when called
/// on another thread than the application's. Main thread.
bool ensureApplication();

/// The same without making an application: true when the host's own is there and usable.
bool attachToApplication();

}  // namespace vorla
