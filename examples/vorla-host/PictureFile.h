#pragma once

#include <QByteArray>
#include <QString>

/// Writes a picture, given as PNG, to a file; "-" is standard output. A file whose name ends in
/// another format's extension is written in that format, every other one gets the bytes as they
/// are. A regular file is replaced at once or not at all. Returns the reason of a failure, empty
/// when all is well.
QString writePicture(const QByteArray& png, const QString& path);
