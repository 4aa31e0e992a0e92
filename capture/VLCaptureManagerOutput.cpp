// Delivery of the finished picture: sound, pasteboard, file.

#include <QByteArray>
#include <chrono>
#include <utility>

#include <vorla/VLCaptureSetting.h>
#include "capture/VLCaptureManager.h"
#include "imaging/ImageEncoding.h"
#include "imaging/ImageHelpers.h"
#include "imaging/PasteboardHelpers.h"
#include "imaging/StringHelpers.h"
#include "imaging/png/PngEncoder.h"
#include "platform/base/Bundle.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/MainQueue.h"
#include "platform/base/VLLog.h"
#include "platform/base/files.h"
#include "platform/desktop/SavePanel.h"
#include "platform/desktop/Sound.h"

using vorla::DispatchQueue;
using vorla::MainQueue;
using vorla::PngEncoder;

namespace {

constexpr const char* soundName = "camera.wav";

/// What outlives the session: the picture's receiver and how the picture is to be saved.
struct Delivery {
    std::shared_ptr<VLCaptureRequest> request;
    std::shared_ptr<VLCaptureRequestDelegate> delegate;
    std::weak_ptr<VLCaptureManager> manager;
    VLCaptureEndHandler ended;
    QImage image;
    bool reduce = false;  ///< to one pixel a point
    uint64_t fileType = VLBitmapFileTypePNG;
};

std::span<const std::byte> bytesOf(const QByteArray& data) {
    return std::as_bytes(std::span(data.constData(), static_cast<size_t>(data.size())));
}

/// Full resolution is kept only where the screen has it and the user wants it.
Delivery makeDelivery(const std::shared_ptr<VLCaptureRequest>& request,
                      const std::shared_ptr<VLCaptureRequestDelegate>& delegate,
                      const std::weak_ptr<VLCaptureManager>& manager, VLCaptureEndHandler ended,
                      const QImage& image, bool isHighResolution) {
    auto& setting = VLCaptureSetting::sharedInstance();
    return {request,           delegate, manager,
            std::move(ended),  image,    isHighResolution && !setting.isHighResolution(),
            setting.fileType()};
}

std::string fileName(const Delivery& delivery, bool isHighResolution, const std::string& folder) {
    return vorla::imageFileNameForPath(
        folder, static_cast<int>(delivery.fileType), isHighResolution && !delivery.reduce,
        VLCaptureSetting::sharedInstance().fileNamePrefix(), QDateTime::currentDateTime());
}

/// The outcome of a delivery; `path` is empty for the clipboard.
VLCaptureOutcome outcomeOf(VLCaptureError error, const QByteArray& png, const std::string& path) {
    const auto bytes = bytesOf(png);
    return {
        .kind = error == VLCaptureErrorNone ? VLCaptureOutcomeDelivered : VLCaptureOutcomeFailed,
        .error = error,
        .imageData = {bytes.begin(), bytes.end()},
        .path = path};
}

/// What was written, as PNG, and why that failed.
struct Saved {
    QByteArray png;
    VLCaptureError error;
};

/// Writes the file and returns the PNG of what was written, encoded once where the file is one too.
/// Any thread.
Saved saveTo(Delivery& delivery, const std::string& path, PngEncoder::Goal goal) {
    if (delivery.reduce) delivery.image = vorla::convert2Xto1XImage(delivery.image);
    const QByteArray png = PngEncoder::encode(delivery.image, {.goal = goal});
    const auto fileType = static_cast<int>(delivery.fileType);
    return {png, fileType == vorla::ImageFileTypePng
                     ? vorla::saveToFile(png, path)
                     : vorla::saveToFile(delivery.image, path, fileType)};
}

/// Takes the delivery over: the host's delegate must not die on a background thread.
void tellDelegate(Delivery delivery, const Saved& saved, const std::string& path) {
    MainQueue::post([delivery = std::move(delivery), saved, path] {
        VLCaptureManager::setLastError(saved.error);
        if (delivery.delegate) {
            delivery.delegate->captureRequest(*delivery.request, bytesOf(saved.png), path,
                                              std::nullopt);
            if (const auto manager = delivery.manager.lock()) manager->clean();
        }
        if (delivery.ended) delivery.ended(outcomeOf(saved.error, saved.png, path));
    });
}

void saveWhereChosen(Delivery delivery, const vorla::SavePanel::Choice& choice) {
    DispatchQueue::inBackground([delivery = std::move(delivery), choice]() mutable {
        const std::string path = vorla::expandTilde(choice.path.toStdString());
        VLCaptureSetting::sharedInstance().setLastSavePath(choice.directory.toStdString());
        const Saved saved = saveTo(delivery, path, PngEncoder::Goal::Size);
        tellDelegate(std::move(delivery), saved, path);
    });
}

void openSavePanel(const Delivery& delivery, const std::string& name, const std::string& folder) {
    const QString offered = QString::fromStdString(name);
    const QString title =
        QString::fromStdString(vorla::Bundle::framework().localizedString("Save Picture"));
    vorla::SavePanel::begin({title, offered, QString::fromStdString(vorla::expandTilde(folder)),
                             offered.section(u'.', -1)},
                            [delivery](const std::optional<vorla::SavePanel::Choice>& choice) {
                                if (choice)
                                    saveWhereChosen(delivery, *choice);
                                else if (delivery.ended)
                                    delivery.ended({.kind = VLCaptureOutcomeSaveDismissed});
                            });
}

}  // namespace

void VLCaptureManager::captureDidFinishWithImage(const QImage& image, bool needSave,
                                                 bool isHighResolution) {
    const auto keptAlive = shared_from_this();
    VLLog("<VLCaptureManager> %s", __func__);
    observers_.clear();
    cleanCaptureWindow();
    if (VLCaptureSetting::sharedInstance().isPlaySound()) playSound();
    if (!needSave)
        writeImageToPasteboard(image);
    else if (request_ && request_->needSelectSavePath())
        saveImage(image, isHighResolution);
    else
        defaultSaveImage(image, isHighResolution);
    clean();
    if (!ended_) return;
    setLastError(VLCaptureErrorNoPicture);
    tellEnd(outcomeOf(VLCaptureErrorNoPicture, {}, {}));
}

void VLCaptureManager::playSound() {
    vorla::playSoundFile(vorla::Bundle::framework().pathForResource(soundName), soundName);
}

void VLCaptureManager::writeImageToPasteboard(const QImage& image) {
    if (image.isNull()) return;
    const auto keptAlive = shared_from_this();
    const QByteArray png = PngEncoder::encode(image);
    VLCaptureError error = VLCaptureErrorNone;
    if (png.isEmpty())
        error = VLCaptureErrorNotEncoded;
    else if (!vorla::writePNGDataToPasteboard(image, png))
        error = VLCaptureErrorClipboard;
    const auto delegate = std::exchange(delegate_, nullptr);
    VLLog("%s - clean", __func__);
    clean();
    setLastError(error);
    if (delegate) {
        VLLog("%s - pass Image to delegate", __func__);
        delegate->captureRequest(*request_, bytesOf(png), std::nullopt, std::nullopt);
    }
    if (ended_) tellEnd(outcomeOf(error, png, {}));
}

void VLCaptureManager::defaultSaveImage(const QImage& image, bool isHighResolution) {
    Delivery delivery = makeDelivery(request_, delegate_, weak_from_this(),
                                     std::exchange(ended_, nullptr), image, isHighResolution);
    const std::string folder =
        vorla::expandTilde(VLCaptureSetting::sharedInstance().lastSavePath());
    const std::string path = folder + "/" + fileName(delivery, isHighResolution, folder);
    const Saved saved = saveTo(delivery, path, PngEncoder::Goal::Speed);
    VLLog("save Image to path:%s", path.c_str());
    tellDelegate(delivery, saved, path);
}

void VLCaptureManager::saveImage(const QImage& image, bool isHighResolution) {
    Delivery delivery = makeDelivery(request_, delegate_, weak_from_this(),
                                     std::exchange(ended_, nullptr), image, isHighResolution);
    DispatchQueue::inBackground([delivery = std::move(delivery), isHighResolution]() mutable {
        const std::string folder = VLCaptureSetting::sharedInstance().lastSavePath();
        const std::string name = fileName(delivery, isHighResolution, folder);
        MainQueue::post([delivery = std::move(delivery), name, folder] {
            openSavePanel(delivery, name, folder);
        });
    });
}
