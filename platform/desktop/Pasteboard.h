#pragma once

#include <QByteArray>
#include <QString>

namespace vorla {

/// The general pasteboard (the desktop's clipboard). Main thread.
///
/// A picture is offered as image/png first, with its bytes ready, and after that as the other image
/// types that programs ask for, which are made from the same bytes when asked. The PNG
/// outlives the host: a clipboard manager keeps it, else a small process of ours does.
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
