#include "platform/desktop/SavePanel.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace vorla {

void SavePanel::begin(const Options& options,
                      std::function<void(const std::optional<Choice>&)> handler) {
    auto* dialog = new QFileDialog(nullptr, options.title);
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
        const QStringList files = dialog->selectedFiles();
        if (result != QDialog::Accepted || files.isEmpty()) {
            handler(std::nullopt);
            return;
        }
        const QFileInfo chosen(files.first());
        handler(Choice{chosen.absoluteFilePath(), chosen.absolutePath()});
    });
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

}  // namespace vorla
