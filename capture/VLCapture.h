#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "capture/VLCaptureRequest.h"
#include "platform/base/export.h"

// The functions through which a host uses the framework. Call them on the main thread (of the
// QApplication, where the host has one; else of the host's main loop).

/// The framework's version, for instance "1.0.0".
VL_EXPORT extern const char* const VorlaFrameworkVersionString;

/// Makes everything ready that a first capture needs. Call it at launch, so that the first capture
/// is as fast as later ones. Does nothing that the user sees.
VL_EXPORT void VLPrepareCapture();

/// Starts a capture: every screen freezes under a panel, and the user picks. Returns at once; the
/// request's delegate hears the outcome. False when a capture is already running, when no window
/// server answers, or when the host's application object cannot show windows; the reason is logged.
VL_EXPORT bool VLStartCapture(const std::shared_ptr<VLCaptureRequest>& request);

VL_EXPORT bool VLIsCapturing();

/// Ends a running capture at once. The delegate hears nothing, since the host itself asked. Always
/// true.
VL_EXPORT bool VLCancelCapture();

/// Counts a usage event of the host's own.
VL_EXPORT void VLStatEvent(int event);

/// Lays a value over the framework's information dictionary for the life of the process, as a host
/// product's own build of it would have it: "SupplyID" chooses the theme. Before the first capture.
VL_EXPORT void VLSetInfoValue(std::string_view key, std::string value);

/// Sends the framework's log lines to the host instead of the system log and standard error. The
/// handler is called on any thread; an empty one restores the default.
VL_EXPORT void VLSetLogHandler(std::function<void(std::string_view line)> handler);

/// Sets who is told, on the main thread, that all panels of a capture are up and painted, with the
/// number of screens: for measuring, and for hosts that want to know when the screen is frozen.
VL_EXPORT void VLSetPanelsShownHandler(std::function<void(int screens)> handler);
