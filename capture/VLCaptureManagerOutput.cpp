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
                      const std::weak_ptr<VLCaptureManager>& manager, const QImage& image,
                      bool isHighResolution) {
    auto& setting = VLCaptureSetting::sharedInstance();
    return {request,
            delegate,
            manager,
            image,
            isHighResolution && !setting.isHighResolution(),
            setting.fileType()};
}

std::string fileName(const Delivery& delivery, bool isHighResolution, const std::string& folder) {
    return vorla::imageFileNameForPath(
        folder, static_cast<int>(delivery.fileType), isHighResolution && !delivery.reduce,
        VLCaptureSetting::sharedInstance().fileNamePrefix(), QDateTime::currentDateTime());
}

/// Writes the file and returns the PNG of what was written, encoded once where the file is one too.
/// Any thread.
QByteArray saveTo(Delivery& delivery, const std::string& path, PngEncoder::Goal goal) {
    if (delivery.reduce) delivery.image = vorla::convert2Xto1XImage(delivery.image);
    const QByteArray png = PngEncoder::encode(delivery.image, {.goal = goal});
    const auto fileType = static_cast<int>(delivery.fileType);
    if (fileType == vorla::ImageFileTypePng)
        vorla::saveToFile(png, path);
    else
        vorla::saveToFile(delivery.image, path, fileType);
    return png;
}

/// Takes the delivery over: the host's delegate must not die on a background thread.
void tellDelegate(Delivery delivery, const QByteArray& png, const std::string& path) {
    MainQueue::post([delivery = std::move(delivery), png, path] {
        if (!delivery.delegate) return;
        delivery.delegate->captureRequest(*delivery.request, bytesOf(png), path, std::nullopt);
        if (const auto manager = delivery.manager.lock()) manager->clean();
    });
}

void saveWhereChosen(Delivery delivery, const vorla::SavePanel::Choice& choice) {
    DispatchQueue::global().async([delivery = std::move(delivery), choice]() mutable {
        const std::string path = vorla::expandTilde(choice.path.toStdString());
        VLCaptureSetting::sharedInstance().setLastSavePath(choice.directory.toStdString());
        const QByteArray png = saveTo(delivery, path, PngEncoder::Goal::Size);
        tellDelegate(std::move(delivery), png, path);
    });
}

void openSavePanel(const Delivery& delivery, const std::string& name, const std::string& folder) {
    const QString offered = QString::fromStdString(name);
    const QString title =
        QString::fromStdString(vorla::Bundle::framework().localizedString("Save Picture"));
    vorla::SavePanel::begin({title, offered, QString::fromStdString(vorla::expandTilde(folder)),
                             offered.section(u'.', -1)},
                            [delivery](const std::optional<vorla::SavePanel::Choice>& choice) {
                                if (choice) saveWhereChosen(delivery, *choice);
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
}

void VLCaptureManager::playSound() {
    vorla::playSoundFile(vorla::Bundle::framework().pathForResource(soundName), soundName);
}

void VLCaptureManager::writeImageToPasteboard(const QImage& image) {
    if (image.isNull()) return;
    const auto keptAlive = shared_from_this();
    const QByteArray png = PngEncoder::encode(image);
    vorla::writePNGDataToPasteboard(image, png);
    const auto delegate = std::exchange(delegate_, nullptr);
    VLLog("%s - clean", __func__);
    clean();
    if (!delegate) return;
    VLLog("%s - pass Image to delegate", __func__);
    delegate->captureRequest(*request_, bytesOf(png), std::nullopt, std::nullopt);
}

void VLCaptureManager::defaultSaveImage(const QImage& image, bool isHighResolution) {
    Delivery delivery =
        makeDelivery(request_, delegate_, weak_from_this(), image, isHighResolution);
    const std::string folder =
        vorla::expandTilde(VLCaptureSetting::sharedInstance().lastSavePath());
    const std::string path = folder + "/" + fileName(delivery, isHighResolution, folder);
    const QByteArray png = saveTo(delivery, path, PngEncoder::Goal::Speed);
    VLLog("save Image to path:%s", path.c_str());
    tellDelegate(delivery, png, path);
}

void VLCaptureManager::saveImage(const QImage& image, bool isHighResolution) {
    const Delivery delivery =
        makeDelivery(request_, delegate_, weak_from_this(), image, isHighResolution);
    DispatchQueue::global().async([delivery, isHighResolution] {
        const std::string folder = VLCaptureSetting::sharedInstance().lastSavePath();
        const std::string name = fileName(delivery, isHighResolution, folder);
        MainQueue::post([delivery, name, folder] { openSavePanel(delivery, name, folder); });
    });
}
