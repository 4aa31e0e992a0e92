#pragma once

#include <QDateTime>
#include <string>

namespace vorla {

// Names of picture files. All strings are UTF-8; file types are those of ImageEncoding.h.

/// The name (no folder) under which a picture is saved into the folder `path`: `prefix`, the moment
/// as "yyyyMMdd-HHmmss" in the current locale, "@2x" for a picture of high resolution, and the
/// extension of the type (".png" for unknown ones).
std::string imageFileNameForPath(const std::string& path, int defaultImageType,
                                 bool isHighResolution, const std::string& prefix,
                                 const QDateTime& moment);

/// The file type that a path's extension names, in any case of letters; PNG for an unknown one.
/// Only the short form "tif" is known for TIFF.
int getBitmapImageFileType(const std::string& path);

/// The path with the extension of the type, unless it has it already in any case of letters. TIFF's
/// ".tif" is always added, an unknown type adds nothing.
std::string appendPathExtension(const std::string& path, int fileType);

}  // namespace vorla
