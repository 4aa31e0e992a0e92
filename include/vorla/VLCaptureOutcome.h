#pragma once

#include <vorla/export.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// @file
/// How a capture ends, and why it may not begin.

/// Why a capture was not started, or why its picture did not get to where it should.
/// The numbers are those of <vorla/vorla.h> and stay.
enum VLCaptureError : int {
    VLCaptureErrorNone = 0,

    // The start was refused; nothing has changed.
    VLCaptureErrorNoRequest = 101,         ///< the request is null
    VLCaptureErrorAlreadyCapturing = 102,  ///< one capture at a time
    VLCaptureErrorWrongThread = 103,       ///< see VLCapture.h for the right one
    VLCaptureErrorOtherCopy = 104,         ///< another copy of the library serves this process
    VLCaptureErrorNoDisplayServer = 105,   ///< no X server answers, or Wayland alone does
    VLCaptureErrorScreenFormat = 106,      ///< the depth of the screen is not supported
    VLCaptureErrorNoWidgets = 107,         ///< the host's application object has no widgets
    VLCaptureErrorPlatform = 108,          ///< the host's toolkit does not run on "xcb"
    VLCaptureErrorNoMainLoop = 109,        ///< neither Qt's nor GLib's loop can drive the session

    // The session took place, but its picture did not get to the clipboard or the file.
    VLCaptureErrorNoPicture = 201,   ///< there was nothing to deliver
    VLCaptureErrorNotEncoded = 202,  ///< too large for the file type, or no memory
    VLCaptureErrorClipboard = 203,   ///< the desktop did not take it
    VLCaptureErrorPath = 204,        ///< the file's path cannot be used
    VLCaptureErrorPermission = 205,  ///< the file or its folder may not be written
    VLCaptureErrorNoSpace = 206,     ///< the disk is full, or a quota is used up
    VLCaptureErrorNotWritten = 207,  ///< writing failed in another way; the log says how
};

/// What a code means, in one English sentence without a full stop. Never null; a number without a
/// meaning yields a text that says so. Lives as long as the process. Any thread.
VL_EXPORT const char* VLCaptureErrorText(VLCaptureError error);

/// How a session ended.
enum VLCaptureOutcomeKind : int {
    VLCaptureOutcomeRefused = 0,          ///< it did not begin; `error` says why
    VLCaptureOutcomeDelivered = 1,        ///< on the clipboard, or in the file `path`
    VLCaptureOutcomeCancelled = 2,        ///< by the user or the system
    VLCaptureOutcomeCancelledByHost = 3,  ///< by `VLCancelCapture`, or with the host's event loop
    VLCaptureOutcomeRecorder = 4,         ///< the user switched to the host's recorder
    VLCaptureOutcomeSaveDismissed = 5,    ///< the user closed the save dialog
    VLCaptureOutcomeFailed = 6,           ///< `error` says why; `imageData` may hold the picture
};

/// The end of a session, a value.
struct VLCaptureOutcome {
    VLCaptureOutcomeKind kind = VLCaptureOutcomeRefused;  ///< how it ended
    VLCaptureError error = VLCaptureErrorNone;            ///< why it was refused, or failed
    /// The picture as PNG, if one was made.
    std::vector<std::byte> imageData = {};
    /// The file that was written, or could not be; UTF-8. Empty for the clipboard.
    std::string path = {};
};

/// Hears the end of a session.
using VLCaptureEndHandler = std::function<void(const VLCaptureOutcome& outcome)>;
