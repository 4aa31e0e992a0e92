#pragma once

#include <QGuiApplication>
#include <QScreen>
#include <utility>
#include <vector>

#include "platform/windowserver/WindowServer.h"

namespace vorla::test {

// The screens that OffscreenMain.cpp sets up, as a scripted window server reports them.
inline const std::pair<PixelRect, double> firstScreen{{0, 0, 1280, 800}, 1.0};
inline const std::pair<PixelRect, double> denseScreen{{1280, 0, 1280, 800}, 2.0};
inline const std::pair<PixelRect, double> negativeScreen{{-640, -100, 640, 480}, 1.0};

/// The toolkit's screen of that scale.
inline QScreen* screenOfScale(double scale) {
    for (QScreen* screen : QGuiApplication::screens())
        if (screen->devicePixelRatio() == scale) return screen;
    return nullptr;
}

}  // namespace vorla::test
