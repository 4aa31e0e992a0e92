#pragma once

#include <vorla/VLCaptureOutcome.h>
#include <vorla/VLCaptureRequest.h>
#include <vorla/VLInfo.h>
#include <vorla/VLLogging.h>
#include <vorla/VLStatistics.h>
#include <vorla/export.h>

#include <functional>
#include <memory>

/// @file
/// The functions through which a host captures. None throws.
///
/// Call them on the thread of the host's QApplication. A host without one calls them on the thread
/// that runs its GLib main loop or, before that runs, on the process's first thread. A call on
/// another thread does nothing, logs the reason, and leaves `VLCaptureErrorWrongThread` in
/// `VLLastCaptureError` of that thread.
///
/// Where two copies of the library are loaded into one process, the first to be used serves it; the
/// other refuses with `VLCaptureErrorOtherCopy`.

/// The framework's version, UTF-8, for instance "1.0.0".
VL_EXPORT extern const char* const VorlaFrameworkVersionString;

/// Makes everything ready that a first capture needs, and starts crash reporting and statistics.
/// Call it at launch, after the application object exists, so that the first capture is as fast as
/// later ones. The user sees nothing of it. It keeps about twice the screens' pixels in memory for
/// as long as the host runs. Where no display server answers only the services start.
VL_EXPORT void VLPrepareCapture();

/// Starts a capture: every screen freezes under a panel, and the user picks. Returns at once; the
/// panels come up from the main loop, and the request's delegate hears the outcome.
///
/// False, with the reason in the log and in `VLLastCaptureError` and nothing changed, when
/// `request` is null, when a capture is already running, when no X server answers or its screen has
/// a format that is not supported, when the host's application object cannot show windows or does
/// not use the toolkit's X11 platform, and when the host has neither a QApplication nor a GLib main
/// loop that could drive the session.
VL_EXPORT bool VLStartCapture(const std::shared_ptr<VLCaptureRequest>& request);

/// The same, saying why it was refused (`VLCaptureErrorNone`: it was not), and with a handler that
/// hears how the session ended: once for each session that was started, on the main thread, after
/// the delegate's call and with the panels gone. Unlike the delegate it also hears the host's own
/// `VLCancelCapture` (before that returns) and that the user closed the save dialog. Only a session
/// that the end of the program overtakes is not reported. May be empty.
VL_EXPORT VLCaptureError VLStartCapture(const std::shared_ptr<VLCaptureRequest>& request,
                                        VLCaptureEndHandler ended);

/// Captures and returns when the session is over, a chosen file written. For programs without any
/// loop: it runs one of its own meanwhile. From a host's Qt or GLib loop it is a nested loop, in
/// which the host's events go on being served; when the host's application object quits in it, the
/// session is cancelled. The delegate, if there is one, hears the outcome as well.
///
/// Needs no loop of the host. In a program without an application object, the first thread that
/// calls it is the capturing thread from then on, and the clipboard's picture is served by a small
/// process of ours as soon as the call returns.
VL_EXPORT VLCaptureOutcome VLRunCapture(const std::shared_ptr<VLCaptureRequest>& request);

/// Why the latest start that the calling thread asked for was refused, or, on the main thread, why
/// the latest picture was not delivered, if that came later: in the delegate's call it is what
/// became of the picture at hand. `VLCaptureErrorNone` when all went well.
VL_EXPORT VLCaptureError VLLastCaptureError();

/// Whether a capture runs: true from `VLStartCapture` until just before the outcome is reported.
/// Any thread; asked on the one that captures, it starts crash reporting and statistics as
/// `VLPrepareCapture` does.
VL_EXPORT bool VLIsCapturing();

/// Ends a running capture at once. The delegate hears nothing, since the host itself asked. Where
/// none runs it does no more than `VLIsCapturing`. Always true.
VL_EXPORT bool VLCancelCapture();

/// Sets who hears, on the main thread, that all panels of a capture are up and painted, with the
/// number of screens: for measuring, and for hosts that want to know when the screen is frozen. An
/// empty one ends it.
VL_EXPORT void VLSetPanelsShownHandler(std::function<void(int screens)> handler);
