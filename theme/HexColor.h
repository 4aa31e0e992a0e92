#pragma once

#include <QColor>
#include <QString>

// Colours written as hexadecimal strings. "No colour" is an invalid QColor.

/// A colour of three or six digits, with or without "#". An empty string means no colour; a string
/// of any other length means opaque white, and digits that make no sense read as 0.
QColor hx_colorWithHexString(QString hexString, double alpha);

/// The same, and forms of four and eight digits whose first one or two are the alpha.
QColor hx_colorWithHexString(QString hexString);

/// 8-bit components, `alpha` from 0 to 1.
QColor hx_colorWith8BitRed(unsigned red, unsigned green, unsigned blue, double alpha);

/// The number that the text begins with, read as hexadecimal with an optional "0x"; 0 if none.
unsigned hx_hexValueToUnsigned(const QString& hexValue);

/// A colour from UTF-8 text that may begin with "0x"; no colour for a null pointer.
QColor __HexColor(const char* hexString);
