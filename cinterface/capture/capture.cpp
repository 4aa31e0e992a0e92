// Of <vorla/vorla.h>: captures.

#include <vorla/VLCapture.h>
#include <vorla/vorla.h>

#include <memory>
#include <utility>

#include "capture/CaptureDoor.h"
#include "cinterface/services/guard.h"

/// What C knows by its address alone.
struct vorla_outcome {
    const VLCaptureOutcome* seen;
    std::unique_ptr<const VLCaptureOutcome> owned;  ///< none where it is lent to a callback
};

namespace {

using vorla::c::callHost;
using vorla::c::guarded;

// One list of numbers for both languages.
static_assert(VORLA_ERROR_ALREADY_CAPTURING == int{VLCaptureErrorAlreadyCapturing});
static_assert(VORLA_ERROR_WRONG_THREAD == int{VLCaptureErrorWrongThread});
static_assert(VORLA_ERROR_OTHER_COPY == int{VLCaptureErrorOtherCopy});
static_assert(VORLA_ERROR_NO_DISPLAY_SERVER == int{VLCaptureErrorNoDisplayServer});
static_assert(VORLA_ERROR_SCREEN_FORMAT == int{VLCaptureErrorScreenFormat});
static_assert(VORLA_ERROR_NO_WIDGETS == int{VLCaptureErrorNoWidgets});
static_assert(VORLA_ERROR_PLATFORM == int{VLCaptureErrorPlatform});
static_assert(VORLA_ERROR_NO_MAIN_LOOP == int{VLCaptureErrorNoMainLoop});
static_assert(VORLA_ERROR_NO_PICTURE == int{VLCaptureErrorNoPicture});
static_assert(VORLA_ERROR_NOT_ENCODED == int{VLCaptureErrorNotEncoded});
static_assert(VORLA_ERROR_CLIPBOARD == int{VLCaptureErrorClipboard});
static_assert(VORLA_ERROR_PATH == int{VLCaptureErrorPath});
static_assert(VORLA_ERROR_PERMISSION == int{VLCaptureErrorPermission});
static_assert(VORLA_ERROR_NO_SPACE == int{VLCaptureErrorNoSpace});
static_assert(VORLA_ERROR_NOT_WRITTEN == int{VLCaptureErrorNotWritten});
static_assert(VORLA_OUTCOME_DELIVERED == int{VLCaptureOutcomeDelivered});
static_assert(VORLA_OUTCOME_CANCELLED == int{VLCaptureOutcomeCancelled});
static_assert(VORLA_OUTCOME_CANCELLED_BY_HOST == int{VLCaptureOutcomeCancelledByHost});
static_assert(VORLA_OUTCOME_RECORDER == int{VLCaptureOutcomeRecorder});
static_assert(VORLA_OUTCOME_SAVE_DISMISSED == int{VLCaptureOutcomeSaveDismissed});
static_assert(VORLA_OUTCOME_FAILED == int{VLCaptureOutcomeFailed});

/// The request that the options describe; null stands for all defaults.
int makeRequest(const vorla_capture_options* options, std::shared_ptr<VLCaptureRequest>& request) {
    vorla_capture_options known = VORLA_CAPTURE_OPTIONS_INIT;
    if (options)
        if (const int error = vorla::c::readOptions(options, known)) return error;
    if (known.offer_recorder > 1 || known.save_without_asking > 1) return VORLA_ERROR_OUT_OF_RANGE;
    request = std::make_shared<VLCaptureRequest>();
    request->setShowSwitch(known.offer_recorder != 0);
    request->setNeedSelectSavePath(known.save_without_asking == 0);
    return VORLA_OK;
}

}  // namespace

int vorla_prepare() {
    return guarded(__func__, []() -> int {
        VLPrepareCapture();
        return vorla::captureObstacle();
    });
}

int vorla_start_capture(const vorla_capture_options* options, vorla_ended_handler ended,
                        void* user) {
    return guarded(__func__, [=]() -> int {
        if (!ended) return VORLA_ERROR_NULL;
        std::shared_ptr<VLCaptureRequest> request;
        if (const int error = makeRequest(options, request)) return error;
        return VLStartCapture(request, [ended, user](const VLCaptureOutcome& outcome) {
            const vorla_outcome lent = {&outcome, nullptr};
            callHost("vorla_start_capture", [&] { ended(&lent, user); });
        });
    });
}

int vorla_run_capture(const vorla_capture_options* options, vorla_outcome** outcome) {
    return guarded(__func__, [=]() -> int {
        if (!outcome) return VORLA_ERROR_NULL;
        *outcome = nullptr;
        std::shared_ptr<VLCaptureRequest> request;
        if (const int error = makeRequest(options, request)) return error;
        auto owned = std::make_unique<VLCaptureOutcome>(VLRunCapture(request));
        if (owned->kind == VLCaptureOutcomeRefused) return owned->error;
        const VLCaptureOutcome* seen = owned.get();
        *outcome = std::make_unique<vorla_outcome>(vorla_outcome{seen, std::move(owned)}).release();
        return VORLA_OK;
    });
}

int vorla_is_capturing() {
    return guarded(__func__, []() -> int { return VLIsCapturing() ? 1 : 0; }) == 1 ? 1 : 0;
}

int vorla_cancel_capture() {
    return guarded(__func__, []() -> int {
        const int error = vorla::captureRefusal("vorla_cancel_capture");
        if (error == VORLA_OK) VLCancelCapture();
        return error;
    });
}

int vorla_set_panels_handler(vorla_panels_handler handler, void* user) {
    return guarded(__func__, [=]() -> int {
        const int error = vorla::captureRefusal("vorla_set_panels_handler");
        if (error != VORLA_OK) return error;
        if (handler)
            VLSetPanelsShownHandler([handler, user](int screens) {
                callHost("vorla_set_panels_handler", [&] { handler(screens, user); });
            });
        else
            VLSetPanelsShownHandler({});
        return VORLA_OK;
    });
}

int vorla_outcome_kind(const vorla_outcome* outcome) {
    return outcome ? int{outcome->seen->kind} : int{VORLA_OUTCOME_NONE};
}

int vorla_outcome_error(const vorla_outcome* outcome) {
    return outcome ? int{outcome->seen->error} : int{VORLA_ERROR_NULL};
}

const void* vorla_outcome_bytes(const vorla_outcome* outcome, size_t* size) {
    const bool hasPicture = outcome && !outcome->seen->imageData.empty();
    if (size) *size = hasPicture ? outcome->seen->imageData.size() : 0;
    return hasPicture ? outcome->seen->imageData.data() : nullptr;
}

const char* vorla_outcome_path(const vorla_outcome* outcome) {
    return outcome && !outcome->seen->path.empty() ? outcome->seen->path.c_str() : nullptr;
}

int vorla_outcome_free(vorla_outcome* outcome) {
    if (outcome && !outcome->owned) return VORLA_ERROR_NOT_OWNED;
    const std::unique_ptr<vorla_outcome> dropped(outcome);
    return VORLA_OK;
}
