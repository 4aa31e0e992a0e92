#include <vorla/VLIntroduceManager.h>

#include <QWidgetAction>

#include "switch/VLIntroduceView.h"

namespace {

constexpr VLRect viewFrame{0.0, 0.0, 61.0, 19.0};

}  // namespace

QWidgetAction* VLIntroduceManager::introduceMenuItem(QObject* parent) {
    auto* item = new QWidgetAction(parent);
    auto* view = new VLIntroduceView(viewFrame);
    item->setDefaultWidget(view);
    return item;
}
