#pragma once

#include <QString>

/// A text of the program's in the user's language; the English text is its key.
QString text(const char* english);

/// Has the toolkit and `text` speak the user's language, where there is a table for it. Once, after
/// the application object is made.
void installTranslation();
