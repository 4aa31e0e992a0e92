#include <vorla/VLCaptureOutcome.h>

const char* VLCaptureErrorText(VLCaptureError error) {
    switch (error) {
        case VLCaptureErrorNone:
            return "nothing went wrong";
        case VLCaptureErrorNoRequest:
            return "there is no capture request";
        case VLCaptureErrorAlreadyCapturing:
            return "a capture is running already";
        case VLCaptureErrorWrongThread:
            return "captures belong to the thread of the application object or of the main loop";
        case VLCaptureErrorOtherCopy:
            return "another copy of the library serves this process";
        case VLCaptureErrorNoDisplayServer:
            return "there is nothing to capture from: no X server answers";
        case VLCaptureErrorScreenFormat:
            return "the depth of the screen, or its order of colours, is not supported";
        case VLCaptureErrorNoWidgets:
            return "the host's application object is no QApplication";
        case VLCaptureErrorPlatform:
            return "the host's toolkit does not run on the platform \"xcb\"";
        case VLCaptureErrorNoMainLoop:
            return "no main loop of the host can drive a capture";
        case VLCaptureErrorNoPicture:
            return "there was no picture to deliver";
        case VLCaptureErrorNotEncoded:
            return "the picture cannot be encoded as a file of that type";
        case VLCaptureErrorClipboard:
            return "the desktop did not take the picture for its clipboard";
        case VLCaptureErrorPath:
            return "the path of the file cannot be used";
        case VLCaptureErrorPermission:
            return "the file or its folder may not be written";
        case VLCaptureErrorNoSpace:
            return "there is no space left for the file";
        case VLCaptureErrorNotWritten:
            return "the file could not be written";
    }
    return "this number stands for no error";
}
