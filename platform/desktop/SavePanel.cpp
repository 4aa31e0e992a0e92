#include "platform/desktop/SavePanel.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QWindow>

namespace vorla {
namespace {

/// Extensions that stand for one kind of file.
bool isSameKind(const QString& one, const QString& other) {
    const auto kind = [](const QString& extension) {
        const QString lower = extension.toLower();
        return lower == u"jpeg"  ? QStringLiteral("jpg")
               : lower == u"tif" ? QStringLiteral("tiff")
                                 : lower;
    };
    return kind(one) == kind(other);
}

/// The path with the one allowed extension: behind any other that was typed, so that a name never
/// says what the file is not.
QString withExtension(const QString& path, const QString& extension) {
    return isSameKind(QFileInfo(path).suffix(), extension) ? path : path + u'.' + extension;
}

class Dialog : public QFileDialog {
 public:
    Dialog(const QString& title, QString extension)
        : QFileDialog(nullptr, title), extension_(std::move(extension)) {}

    [[nodiscard]] QString chosenPath() const {
        const QStringList files = selectedFiles();
        return files.isEmpty() ? QString() : withExtension(files.first(), extension_);
    }

 protected:
    /// The toolkit's own dialog asks about an existing file in here: it must see the final name.
    void accept() override {
        const QFileInfo chosen(chosenPath());
        auto* name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        if (name && !chosen.filePath().isEmpty() && !QFileInfo(name->text()).isDir())
            name->setText(chosen.dir() == directory() ? chosen.fileName() : chosen.filePath());
        QFileDialog::accept();
    }

 private:
    QString extension_;
};

}  // namespace

void SavePanel::begin(const Options& options,
                      std::function<void(const std::optional<Choice>&)> handler) {
    auto* dialog = new Dialog(options.title, options.fileExtension);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // A host that lives in the tray must not end with this window.
    dialog->setAttribute(Qt::WA_QuitOnClose, false);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(options.fileExtension);
    dialog->setNameFilter(
        QStringLiteral("%1 (*.%2)").arg(options.fileExtension.toUpper(), options.fileExtension));
    const bool usable = QFileInfo(options.directory).isDir();
    dialog->setDirectory(usable ? options.directory : QDir::homePath());
    dialog->selectFile(options.fileName);
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog, handler](int result) {
        const QString path = dialog->chosenPath();
        if (result != QDialog::Accepted || path.isEmpty()) {
            handler(std::nullopt);
            return;
        }
        const QFileInfo chosen(path);
        handler(Choice{chosen.absoluteFilePath(), chosen.absolutePath()});
    });
    // Behind a modal dialog of the host it could not be used; in front of it, as its child, it can.
    if (QWindow* modal = QGuiApplication::modalWindow()) {
        dialog->setWindowModality(Qt::ApplicationModal);
        dialog->winId();
        dialog->windowHandle()->setTransientParent(modal);
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

}  // namespace vorla
