#pragma once

#include <QByteArray>

namespace vorla {

/// Leaves a copy of the picture on the clipboard with a process of ours ("clipboard-keeper"), which
/// serves it when this program has ended, however it ended, until someone else takes the clipboard.
/// To be called when this program has just taken the clipboard. It costs a few milliseconds;
/// without an X server, or where a clipboard manager keeps contents, it does nothing. A failure is
/// logged. Main thread.
void keepPictureOnClipboard(const QByteArray& png);

/// Hands the picture, which this program has put on the clipboard, to such a process for good: for
/// a program that lives on without an event loop to serve it from. Main thread.
void givePictureAway(const QByteArray& png);

}  // namespace vorla
