#pragma once

#include <vorla/VLCaptureRequest.h>
#include <vorla/VLInfo.h>
#include <vorla/VLLogging.h>
#include <vorla/VLStatistics.h>
#include <vorla/export.h>

#include <functional>
#include <memory>

// The functions through which a host captures. Call them on the main thread: the QApplication's
// where the host has one, else the one that runs the host's GLib main loop. None throws.

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
/// False, with the reason in the log and nothing changed, when `request` is null, when a capture is
/// already running, when no X server answers or its screen has a format that is not supported, when
/// the host's application object cannot show windows or does not use the toolkit's X11 platform,
/// and when the host has neither a QApplication nor a GLib main loop that could drive the session.
VL_EXPORT bool VLStartCapture(const std::shared_ptr<VLCaptureRequest>& request);

/// Whether a capture runs: true from `VLStartCapture` until just after the delegate's call.
VL_EXPORT bool VLIsCapturing();

/// Ends a running capture at once. The delegate hears nothing, since the host itself asked. Does
/// nothing when none runs. Always true.
VL_EXPORT bool VLCancelCapture();

/// Sets who hears, on the main thread, that all panels of a capture are up and painted, with the
/// number of screens: for measuring, and for hosts that want to know when the screen is frozen. An
/// empty one ends it.
VL_EXPORT void VLSetPanelsShownHandler(std::function<void(int screens)> handler);
