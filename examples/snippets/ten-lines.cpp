#include <fstream>

#include <vorla/VLCapture.h>

int main() {
    const VLCaptureOutcome outcome = VLRunCapture(std::make_shared<VLCaptureRequest>());
    const auto* bytes = reinterpret_cast<const char*>(outcome.imageData.data());
    std::ofstream("capture.png", std::ios::binary)
        .write(bytes, std::streamsize(outcome.imageData.size()));
    return outcome.error;
}
