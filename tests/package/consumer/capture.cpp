// A host that has nothing of the framework but what was installed. Run without a display.
#include <vorla/VLCapture.h>
#include <vorla/VLCaptureDefaultSetting.h>
#include <vorla/VLCaptureSetting.h>
#include <vorla/VLNotifications.h>
#include <vorla/VLWindowOwners.h>

#include <cstdio>
#include <string>

int main() {
    std::string logged;
    VLSetLogHandler([&logged](std::string_view line) { logged += line; });
    VLCaptureDefaultSetting::sharedInstance().setDefaultValueOfFileNamePrefix("Consumer");
    VLPrepareCapture();
    const bool started = VLStartCapture(VLCaptureRequest::sharedInstance());
    const bool named =
        VLCaptureSetting::sharedInstance().fileNamePrefix() == "Consumer" && !VLIsCapturing();
    std::printf("%s %s %s\n", VorlaFrameworkVersionString, started ? "started" : "refused",
                named && !logged.empty() ? "with a reason" : "silently");
    VLSetLogHandler({});
    return 0;
}
