#pragma once

#include <QColor>
#include <QPointer>
#include <memory>

#include "editor/VLToolbarWindowControllerDelegate.h"
#include "platform/base/NotificationCenter.h"
#include "platform/view/VLOverlayPanel.h"
#include "toolbar/VLToolbarView.h"
#include "toolbar/popover/VLPopoverWindowController.h"

/// The floating toolbar of one surface, with its popover: passes on to the editor what the user
/// chooses, and follows the editor's broadcasts. Main thread.
class VLToolbarWindowController : public VLToolbarViewDelegate,
                                  public VLPopoverWindowControllerDelegate,
                                  public std::enable_shared_from_this<VLToolbarWindowController> {
 public:
    /// A toolbar with its lower left corner at a point of the screen, in no window yet.
    static std::shared_ptr<VLToolbarWindowController> create(VLPoint origin);
    ~VLToolbarWindowController() override;
    VLToolbarWindowController(const VLToolbarWindowController&) = delete;
    VLToolbarWindowController& operator=(const VLToolbarWindowController&) = delete;

    void setDelegate(std::weak_ptr<VLToolbarWindowControllerDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    /// The panel; null once its screen's panel no longer exists.
    [[nodiscard]] VLOverlayPanel* window() const { return window_; }
    [[nodiscard]] VLToolbarView* toolbarView() const { return toolbarView_; }
    /// Made at the first reading.
    [[nodiscard]] const std::shared_ptr<VLPopoverWindowController>& popoverWindowController();

    /// Moves the panel's lower left corner, in points local to the screen.
    void setPosition(VLPoint position);
    void setEnableUndo(bool enable);
    [[nodiscard]] const QColor& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(const QColor& color);

    void graphTypeDidChange(int64_t graphType) override;
    void showPopoverViewType(int64_t graphType) override;
    void showPopoverViewType(int64_t graphType, uint64_t width, const QColor& color);
    void undo() override;
    void colorDidChange(const QColor& color) override;
    void widthDidChange(uint64_t width) override;
    /// The size of a text travels to the editor as a width.
    void fontSizeDidChange(uint64_t fontSize) override;

 private:
    VLToolbarWindowController() = default;
    void setupWindow(VLPoint origin);
    void setupToolbarView();
    void observe();
    void focusItemDidChange(const vorla::Notification& notification);
    void beginCreateItem(const vorla::Notification& notification);
    void onUndoRedoCheckNotification(const vorla::Notification& notification);
    void handleChangeThemeNotification();

    std::weak_ptr<VLToolbarWindowControllerDelegate> delegate_;
    QColor backgroundColor_;
    bool viewForVorla_ = false;
    QPointer<VLOverlayPanel> window_;
    QPointer<VLToolbarView> toolbarView_;
    std::shared_ptr<VLPopoverWindowController> popoverWindowController_;
    vorla::NotificationObservers observers_;
};
