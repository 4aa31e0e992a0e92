#pragma once

#include <vorla/export.h>

class QObject;
class QWidgetAction;

/// Introduces the capture tool in a menu of the host's: for hosts on Qt only.
class VL_EXPORT VLIntroduceManager {
 public:
    /// An entry for the foot of a menu: a small logo as wide as the menu, highlighted under the
    /// pointer, which opens the product's web page (`VLInfoKeyIntroduceURL`) when clicked and
    /// closes the menu. Without an address a click is only counted. `parent` owns the entry; with
    /// none the caller does. Main thread, with a QApplication.
    static QWidgetAction* introduceMenuItem(QObject* parent = nullptr);
};
