#include <vorla/VLCaptureRequest.h>

#include "platform/base/raii.h"

VLCaptureRequestDelegate::VLCaptureRequestDelegate() = default;
VLCaptureRequestDelegate::~VLCaptureRequestDelegate() = default;
void VLCaptureRequestDelegate::captureRequestDidCancel(VLCaptureRequest& /*request*/) {}
void VLCaptureRequestDelegate::captureRequestDidChange(VLCaptureRequest& /*request*/) {}
void VLCaptureRequestDelegate::captureRequest(VLCaptureRequest& /*request*/,
                                              std::span<const std::byte> /*imageData*/,
                                              const std::optional<std::string>& /*saveToPath*/,
                                              const std::optional<std::string>& /*error*/) {}

struct VLCaptureRequest::State {
    bool showSwitch = false;
    bool needSelectSavePath = true;
    std::weak_ptr<VLCaptureRequestDelegate> delegate;
};

VLCaptureRequest::VLCaptureRequest() : state_(std::make_unique<State>()) {}
VLCaptureRequest::~VLCaptureRequest() = default;

const std::shared_ptr<VLCaptureRequest>& VLCaptureRequest::sharedInstance() {
    static vorla::NoDestructor<std::shared_ptr<VLCaptureRequest>> instance(
        std::make_shared<VLCaptureRequest>());
    return *instance;
}

bool VLCaptureRequest::showSwitch() const {
    return state_->showSwitch;
}
void VLCaptureRequest::setShowSwitch(bool value) {
    state_->showSwitch = value;
}

bool VLCaptureRequest::needSelectSavePath() const {
    return state_->needSelectSavePath;
}
void VLCaptureRequest::setNeedSelectSavePath(bool value) {
    state_->needSelectSavePath = value;
}

std::shared_ptr<VLCaptureRequestDelegate> VLCaptureRequest::delegate() const {
    return state_->delegate.lock();
}
void VLCaptureRequest::setDelegate(const std::weak_ptr<VLCaptureRequestDelegate>& delegate) {
    state_->delegate = delegate;
}
