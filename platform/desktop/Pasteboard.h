#pragma once

#include <QByteArray>
#include <QString>

namespace vorla {

/// The general pasteboard (the desktop's clipboard). Main thread.
///
/// A picture is offered as image/png first, with its bytes ready, and after that as the other image
/// types that programs ask for, which are made from the same bytes when asked. With a clipboard
/// manager running, the contents outlive the host.
class Pasteboard {
 public:
    static QString typePNG() { return QStringLiteral("image/png"); }

    void clearContents();
    /// Offers `data` as `type` alone (plus the further image types for PNG). False when the desktop
    /// does not take it.
    bool setData(const QByteArray& data, const QString& type);

    static Pasteboard& general();
};

}  // namespace vorla
