#include "imaging/PasteboardHelpers.h"

#include "platform/base/VLLog.h"
#include "platform/desktop/Pasteboard.h"

namespace vorla {

bool writePNGDataToPasteboard(const QImage& image, const QByteArray& png) {
    VLLog("-------------------------%s", __func__);
    if (image.isNull() || png.isEmpty()) return false;
    auto& pasteboard = Pasteboard::general();
    pasteboard.clearContents();
    if (!pasteboard.setData(png, Pasteboard::typePNG())) return false;
    const QSizeF points = image.deviceIndependentSize();
    VLLog("粘贴到剪切板成功，数据长:%lld, width:%f, height:%f", static_cast<long long>(png.size()),
          points.width(), points.height());
    return true;
}

}  // namespace vorla
