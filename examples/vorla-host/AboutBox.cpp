#include "AboutBox.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include <vorla/VLCapture.h>
#include <vorla/VLInfo.h>
#include "HostIcon.h"
#include "Translation.h"

namespace {

QString addressOrNobody(std::string_view key) {
    const QString address = QString::fromStdString(VLInfoValue(key));
    return address.isEmpty() ? text("nobody; no address is set") : address.toHtmlEscaped();
}

QString aboutText() {
    const auto paragraph = [](const QString& words) { return "<p>" + words + "</p>"; };
    return "<h2>" + text("Vorla sample host") + "</h2>" +
           paragraph(text("Version %1").arg(VorlaFrameworkVersionString)) +
           paragraph(text("Captures windows and regions of the screen, and shows how a program "
                          "embeds VorlaFramework.")) +
           paragraph(text("Free software under the MIT licence.")) + "<h3>" + text("What is sent") +
           "</h3>" +
           paragraph(text("Counters of the tools used, once a start, to: <b>%1</b>")
                         .arg(addressOrNobody(VLInfoKeyStatisticsURL))) +
           paragraph(text("Reports of crashes (the program's call stacks and the files that it has "
                          "loaded), and when the program ran, to: <b>%1</b>")
                         .arg(addressOrNobody(VLInfoKeyCrashSyncURL))) +
           paragraph(text("With both goes a number by which the server tells machines apart.")) +
           paragraph(text("Never: pictures, titles of windows, names of files that you save."));
}

}  // namespace

void openAboutBox(QWidget* parent) {
    auto* dialog = new QDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(text("About"));
    auto* icon = new QLabel(dialog);
    icon->setPixmap(hostIcon().pixmap(QSize(64, 64), dialog->devicePixelRatioF()));
    auto* words = new QLabel(aboutText(), dialog);
    words->setTextFormat(Qt::RichText);
    words->setWordWrap(true);
    words->setMinimumWidth(380);
    words->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);

    auto* row = new QHBoxLayout;
    row->setSpacing(18);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addWidget(words, 1);
    auto* layout = new QVBoxLayout(dialog);
    layout->setContentsMargins(18, 18, 18, 14);
    layout->addLayout(row);
    layout->addWidget(buttons);
    dialog->open();
}
