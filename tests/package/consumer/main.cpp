// A host that has nothing of the framework but what was installed. Run without a display.
#include <capture/VLCapture.h>
#include <settings/VLCaptureDefaultSetting.h>

#include <cstdio>
#include <string>

int main() {
    std::string logged;
    VLSetLogHandler([&logged](std::string_view line) { logged += line; });
    VLCaptureDefaultSetting::sharedInstance().setDefaultValueOfFileNamePrefix("Consumer");
    VLPrepareCapture();
    const bool started = VLStartCapture(VLCaptureRequest::sharedInstance());
    std::printf("%s %s %s\n", VorlaFrameworkVersionString, started ? "started" : "refused",
                logged.empty() ? "silently" : "with a reason");
    return 0;
}
