#pragma once

#include <QJsonObject>

/// Prints an event for whoever drives the program: one JSON object a line, on standard output.
void report(const QJsonObject& event);
void report(const char* event);

/// Has events go to standard error: standard output is the picture's.
void reportToStandardError();
