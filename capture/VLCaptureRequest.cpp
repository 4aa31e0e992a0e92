#include "capture/VLCaptureRequest.h"

VLCaptureRequestDelegate::~VLCaptureRequestDelegate() = default;

void VLCaptureRequestDelegate::captureRequestDidCancel(VLCaptureRequest& /*request*/) {}

void VLCaptureRequestDelegate::captureRequestDidChange(VLCaptureRequest& /*request*/) {}

void VLCaptureRequestDelegate::captureRequest(VLCaptureRequest& /*request*/,
                                              std::span<const std::byte> /*imageData*/,
                                              const std::optional<std::string>& /*saveToPath*/,
                                              const std::optional<std::string>& /*error*/) {}

const std::shared_ptr<VLCaptureRequest>& VLCaptureRequest::sharedInstance() {
    static const auto instance = std::make_shared<VLCaptureRequest>();
    return instance;
}
