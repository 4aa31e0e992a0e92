#include "PictureFile.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QSaveFile>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

/// Of formats that lose something: text on a screen must stay sharp.
constexpr int quality = 95;

QByteArray inFormat(const QByteArray& png, const QByteArray& format, QString& reason) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(QImage::fromData(png, "PNG"))) reason = writer.errorString();
    return bytes;
}

QString writeToStandardOutput(const QByteArray& bytes) {
    const auto size = static_cast<size_t>(bytes.size());
    errno = 0;
    const bool done =
        std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
    return done ? QString() : QString::fromLocal8Bit(std::strerror(errno));
}

template <typename File>
QString fill(File& file, const QByteArray& bytes) {
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) {
        if constexpr (std::is_same_v<File, QSaveFile>) {
            if (file.commit()) return {};
        } else {
            if (file.flush()) return {};
        }
    }
    return file.errorString();
}

}  // namespace

QString writePicture(const QByteArray& png, const QString& path) {
    if (path == u"-") return writeToStandardOutput(png);
    QByteArray bytes = png;
    QString reason;
    const QByteArray suffix = QFileInfo(path).suffix().toLower().toLatin1();
    if (suffix != "png" && QImageWriter::supportedImageFormats().contains(suffix))
        bytes = inFormat(png, suffix, reason);
    if (!reason.isEmpty()) return reason;
    // A pipe or a device is no file to be replaced.
    const QFileInfo place(path);
    if (place.exists() && !place.isFile()) {
        QFile file(path);
        return fill(file, bytes);
    }
    QSaveFile file(path);
    // A folder that takes no new files may still hold one that can be changed.
    file.setDirectWriteFallback(true);
    return fill(file, bytes);
}
