#pragma once

#include <QImage>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include <vorla/VLCaptureOutcome.h>
#include <vorla/VLCaptureRequest.h>
#include "capture/VLCaptureWindowController.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/geometry.h"
#include "platform/view/Application.h"
#include "platform/windowserver/WindowServer.h"
#include "switch/VLSwitchMangager.h"

class QByteArray;

/// Runs one capture session from its start to its end.
///
/// The process's instance is made at first use and dropped at the end of every session, so that
/// each session runs on a fresh one. A session ends in exactly one way: cancelled, delivered to the
/// pasteboard, delivered to a file, or handed over to the host's recorder. Main thread.
class VLCaptureManager : public VLCaptureWindowControllerDelegate,
                         public VLSwitchMangagerDelegate,
                         public std::enable_shared_from_this<VLCaptureManager> {
 public:
    static std::shared_ptr<VLCaptureManager> sharedInstance();
    ~VLCaptureManager() override;

    [[nodiscard]] bool isCapturing() const { return isCapturing_; }
    /// The same of whichever manager there is. Any thread.
    static bool isAnyCapturing() { return anyCapturing_; }
    /// One for each screen, in the desktop's order, once its panel was made.
    [[nodiscard]] const std::vector<std::shared_ptr<VLCaptureWindowController>>& windowControllers()
        const {
        return windowControllers_;
    }

    /// Returns why it was refused, with nothing changed. `ended` hears the end of the session as
    /// `VLStartCapture` says.
    VLCaptureError startCaptureByRequest(const std::shared_ptr<VLCaptureRequest>& request,
                                         VLCaptureEndHandler ended = {},
                                         vorla::MainLoop loop = vorla::MainLoop::Host);
    /// Ends the session without a word to the delegate.
    void cancelCapture();

    void captureDidCancel() override;
    void captureDidFinishWithImage(const QImage& image, bool needSave,
                                   bool isHighResolution) override;

    /// The user turns to the recorder: selections are cleared.
    void prepareToRecord() override;
    /// Ends the session and hands over to the host's recorder.
    void changeToRecord() override;

    /// Closes all panels.
    void cleanCaptureWindow();
    /// Ends everything of the session; may be called again.
    void clean();

    /// Plays the shutter, if the framework has its sound.
    void playSound();
    /// Hands the picture to the pasteboard and to the delegate, encoded once, and cleans.
    void writeImageToPasteboard(const QImage& image);
    /// Asks the user for a place, saves there, and informs the delegate. The dialog outlives the
    /// session; when it is cancelled nothing more happens.
    void saveImage(const QImage& image, bool isHighResolution);
    /// Saves to the last place without asking, and informs the delegate.
    void defaultSaveImage(const QImage& image, bool isHighResolution);

    /// What `VLLastCaptureError` returns on the calling thread.
    static void setLastError(VLCaptureError error);
    static VLCaptureError lastError();

    /// See `VLSetPanelsShownHandler`.
    static void setPanelsShownHandler(std::function<void(int screens)> handler);

 private:
    VLCaptureManager();
    static std::shared_ptr<VLCaptureManager>& shared();

    /// Why this cannot be started; logged. If it can, `screens` are those to be captured.
    [[nodiscard]] VLCaptureError obstacle(bool hasRequest, vorla::MainLoop loop,
                                          std::vector<vorla::Display>& screens) const;
    /// Reports the end to whoever started the session; does nothing the second time.
    void tellEnd(const VLCaptureOutcome& outcome);
    void captureFrame(const VLRect& frame, const vorla::Display& screen);
    /// Reads every screen of the session, before any panel of ours is shown.
    void freezeScreens();
    void openPanel(uint32_t displayID);
    void countStart();
    void panelWasPainted();
    void addObserver();
    /// Offers the recorder on every screen, once the panels had time to come up.
    void offerSwitch();
    [[nodiscard]] VLPanel* panelOfDisplay(uint32_t displayID) const;
    void handleReceivedSelectDidBeginNotification();
    void handleCaptureCancelNotification(const vorla::Notification& notification);
    void handleScreenParametersNotification();
    /// Ends a session that the application's end overtakes, while its panels can still be closed.
    static void endWithApplication();

    bool isCapturing_ = false;
    bool startCounted_ = true;
    bool windowsKept_ = false;
    inline static std::atomic<bool> anyCapturing_ = false;
    VLCaptureEndHandler ended_;
    std::shared_ptr<VLCaptureRequest> request_;
    std::shared_ptr<VLCaptureRequestDelegate> delegate_;
    std::vector<vorla::Display> screens_;  ///< still to be frozen
    std::vector<std::shared_ptr<VLCaptureWindowController>> windowControllers_;
    std::shared_ptr<VLSwitchMangager> switchManager_;
    size_t screenCount_ = 0;
    size_t panelsAwaited_ = 0;
    vorla::NotificationObservers observers_;
};

/// Broadcast when displays were added, removed, moved or resized.
inline constexpr const char* NSApplicationDidChangeScreenParametersNotification =
    "NSApplicationDidChangeScreenParametersNotification";
/// Broadcast when another workspace became the active one.
inline constexpr const char* NSWorkspaceActiveSpaceDidChangeNotification =
    "NSWorkspaceActiveSpaceDidChangeNotification";
