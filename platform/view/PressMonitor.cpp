#include "platform/view/PressMonitor.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWindow>

#include "platform/view/VLOverlayPanel.h"
#include "platform/view/VLPanel.h"
#include "platform/view/mouseevents.h"

namespace vorla {

class PressMonitor::Filter : public QObject {
 public:
    explicit Filter(Handler handler) : handler_(std::move(handler)) {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        const bool press = event->type() == QEvent::MouseButtonPress ||
                           event->type() == QEvent::MouseButtonDblClick;
        // At the level of windows, where each comes by once.
        if (press && receiver->isWindowType()) tell(*static_cast<QMouseEvent*>(event), receiver);
        return false;
    }

 private:
    void tell(const QMouseEvent& event, const QObject* window) const {
        if (repeatsPress(event)) return;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* panel = dynamic_cast<VLPanel*>(widget);
            if (!panel || panel->windowHandle() != window) continue;
            QWidget* hit = panel->childAt(event.position().toPoint());
            VLOverlayPanel* overlay = nullptr;
            for (QWidget* w = hit; w && !overlay; w = w->parentWidget())
                overlay = dynamic_cast<VLOverlayPanel*>(w);
            const Handler handler = handler_;  // it may end the monitor
            handler({panel, overlay, hit ? hit : panel, locationInWindow(event.position(), *panel),
                     event.button()});
            return;
        }
    }

    Handler handler_;
};

PressMonitor::PressMonitor(Handler handler)
    : filter_(std::make_unique<Filter>(std::move(handler))) {}

PressMonitor::~PressMonitor() = default;

}  // namespace vorla
