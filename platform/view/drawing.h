#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QString>

#include "platform/base/geometry.h"

class QPainter;

namespace vorla {

/// How pixels between the pixels of a picture are made up.
enum class Interpolation { None, Smooth };

/// Draws `source`, a rectangle of the picture in points with its origin at the picture's lower
/// left, into `target`. What lies outside the picture draws as nothing. The painter is y-up; the
/// picture comes out upright.
void drawImage(QPainter& painter, const QImage& image, const VLRect& target, const VLRect& source,
               Interpolation interpolation);

/// The whole picture into `target`.
void drawImage(QPainter& painter, const QImage& image, const VLRect& target);

/// Width and height of one line of text, in points.
VLSize textSize(const QString& text, const QFont& font);

/// Draws one line of text, upright, with its lower left corner at `origin`.
void drawText(QPainter& painter, const QString& text, const QFont& font, const QColor& color,
              VLPoint origin);

}  // namespace vorla
