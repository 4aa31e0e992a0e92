#pragma once

enum VLCaptureError : int;

namespace vorla {

/// Whose event loop drives the session.
enum class MainLoop {
    Host,  ///< one that the host runs: Qt's, or GLib's where the application object is ours
    Ours,  ///< one that we run ourselves until the session is over
};

/// Whether captures may be asked for on the calling thread: the application object's, if there is
/// one. Without one it is the first thread that asked; where the host's loop is to drive the
/// session, only the process's first thread or the one that runs the GLib main loop may. Any
/// thread.
bool isCaptureThread(MainLoop loop);

/// Makes sure that there is a QApplication that views can live in, and that the main queue runs on
/// its event loop. A host without one gets one that lives until the process ends; a host on the
/// GLib main loop then drives it without further calls. The window server must be known to answer:
/// the toolkit ends the process when it finds none. The host's locale stays as it was, but for the
/// character encoding, which the toolkit sets.
///
/// Returns why there is none, logged: the host has an application object without widgets, or no
/// loop of the host can drive one that is made here. On a thread that `isCaptureThread` allows.
VLCaptureError ensureApplication(MainLoop loop = MainLoop::Host);

/// The same without making an application: true when the host's own is there and usable, and
/// belongs to the calling thread.
bool attachToApplication();

/// Whether the application object is one that `ensureApplication` made.
bool isApplicationOurs();

}  // namespace vorla
