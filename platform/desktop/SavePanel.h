#pragma once

#include <QString>
#include <functional>
#include <optional>

namespace vorla {

/// The desktop's dialog for choosing where to save a file. Main thread.
class SavePanel {
 public:
    struct Options {
        QString title;
        QString fileName;       ///< offered name, with its extension
        QString directory;      ///< offered folder; the home folder when it does not exist
        QString fileExtension;  ///< the one allowed extension, without a dot; added to others
    };
    struct Choice {
        QString path;
        QString directory;
    };

    /// Opens the dialog in front of everything and returns at once. The handler is called once:
    /// with the choice (after the dialog has asked about an existing file), or with nothing when it
    /// was cancelled.
    static void begin(const Options& options,
                      std::function<void(const std::optional<Choice>&)> handler);
};

}  // namespace vorla
