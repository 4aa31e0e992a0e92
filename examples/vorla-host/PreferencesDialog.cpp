#include "PreferencesDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QStyle>
#include <QVBoxLayout>

#include <vorla/VLCaptureSetting.h>
#include <vorla/VLInfo.h>
#include "HostSettings.h"
#include "Translation.h"

namespace {

constexpr std::pair<const char*, qulonglong> fileTypes[] = {
    {"PNG", VLBitmapFileTypePNG},   {"JPEG", VLBitmapFileTypeJPEG},
    {"TIFF", VLBitmapFileTypeTIFF}, {"GIF", VLBitmapFileTypeGIF},
    {"BMP", VLBitmapFileTypeBMP},   {"JPEG 2000", VLBitmapFileTypeJPEG2000}};

VLCaptureSetting& componentSetting() {
    return VLCaptureSetting::sharedInstance();
}

/// The component writes "~" for the home folder.
QString fullPath(const QString& folder) {
    return folder == u"~" || folder.startsWith(u"~/") ? QDir::homePath() + folder.mid(1) : folder;
}

void select(QComboBox* box, const QVariant& value) {
    box->setCurrentIndex(std::max(0, box->findData(value)));
}

QLabel* makeNote(const QString& words, QWidget* parent) {
    auto* note = new QLabel(words, parent);
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);
    return note;
}

/// The number that stands for the same theme as this one.
QString themeNumber(const QString& supplyID) {
    if (supplyID == u"2000") return QStringLiteral("1000");
    for (const char* known : {"4000", "3000", "1000"})
        if (supplyID == QLatin1String(known)) return supplyID;
    return QStringLiteral("0");
}

}  // namespace

PreferencesDialog::PreferencesDialog(HostSettings& settings, QWidget* parent)
    : QDialog(parent), settings_(settings) {
    setWindowTitle(text("Preferences"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeSavingBox());
    layout->addWidget(makeCapturingBox());
    layout->addWidget(makePrivacyBox());
    layout->addStretch();
    // Behind the others, so that the keyboard begins with the folder.
    buttons_ = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults, this);
    buttons_->button(QDialogButtonBox::Ok)->setDefault(true);
    buttons_->button(QDialogButtonBox::RestoreDefaults)->setAutoDefault(false);
    layout->addWidget(buttons_);
    QObject::connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    QObject::connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    QObject::connect(buttons_->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked,
                     this, [this] { showDefaults(); });
    QObject::connect(folder_, &QLineEdit::textChanged, this, [this] { checkFolder(); });
    showStored();
}

QWidget* PreferencesDialog::makeSavingBox() {
    auto* box = new QGroupBox(text("Saving"), this);
    auto* form = new QFormLayout(box);
    form->addRow(text("&Folder:"), makeFolderRow());
    form->addRow(QString(), folderNote_);
    prefix_ = new QLineEdit(box);
    prefix_->setValidator(
        new QRegularExpressionValidator(QRegularExpression("[^/\\x00-\\x1f]{0,60}"), prefix_));
    form->addRow(text("File names &begin with:"), prefix_);
    fileType_ = new QComboBox(box);
    for (const auto& [name, type] : fileTypes) fileType_->addItem(name, type);
    form->addRow(text("File &type:"), fileType_);
    ask_ = new QCheckBox(text("&Ask for a place and a name each time"), box);
    form->addRow(QString(), ask_);
    return box;
}

QWidget* PreferencesDialog::makeFolderRow() {
    auto* row = new QWidget(this);
    folder_ = new QLineEdit(row);
    folder_->setMinimumWidth(260);
    row->setFocusProxy(folder_);
    folderNote_ = makeNote(text("There is no such folder that can be written to."), this);
    folderNote_->hide();
    auto* browse = new QPushButton(style()->standardIcon(QStyle::SP_DirOpenIcon), QString(), row);
    browse->setAutoDefault(false);
    browse->setToolTip(text("Choose a Folder"));
    browse->setAccessibleName(text("Choose a Folder"));
    QObject::connect(browse, &QPushButton::clicked, this, [this] { chooseFolder(); });
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(folder_, 1);
    layout->addWidget(browse);
    return row;
}

QWidget* PreferencesDialog::makeCapturingBox() {
    auto* box = new QGroupBox(text("Capturing"), this);
    auto* form = new QFormLayout(box);
    theme_ = new QComboBox(box);
    theme_->addItem(text("Slate and blue"), "0");
    theme_->addItem(text("Frosted glass and green"), "4000");
    theme_->addItem(text("Paper and orange"), "3000");
    theme_->addItem(text("Violet, four large buttons"), "1000");
    form->addRow(text("&Look of the toolbar:"), theme_);
    sound_ = new QCheckBox(text("&Play a sound"), box);
    highResolution_ = new QCheckBox(text("Keep the screen's full &resolution in files"), box);
    stepAside_ = new QCheckBox(text("&Hide this program's window"), box);
    for (QCheckBox* check : {sound_, highResolution_, stepAside_}) form->addRow(QString(), check);
    return box;
}

QWidget* PreferencesDialog::makePrivacyBox() {
    auto* box = new QGroupBox(text("Privacy"), this);
    auto* layout = new QVBoxLayout(box);
    statistics_ = new QCheckBox(text("&Send how often each tool is used"), box);
    crashes_ = new QCheckBox(text("&Keep reports of crashes, and send them"), box);
    layout->addWidget(statistics_);
    layout->addWidget(crashes_);
    // Off, the address is hidden from the component, and whether there is one cannot be seen.
    const bool knows = settings_.sendsStatistics() && settings_.reportsCrashes();
    const bool sends =
        !VLInfoValue(VLInfoKeyStatisticsURL).empty() || !VLInfoValue(VLInfoKeyCrashSyncURL).empty();
    layout->addWidget(makeNote(
        knows && !sends
            ? text("Takes effect at the next start. No address is set, so nothing is sent.")
            : text("Takes effect at the next start."),
        box));
    return box;
}

void PreferencesDialog::showStored() {
    auto& setting = componentSetting();
    folder_->setText(QString::fromStdString(setting.lastSavePath()));
    prefix_->setText(settings_.fileNamePrefix());
    select(fileType_, QVariant::fromValue<qulonglong>(setting.fileType()));
    ask_->setChecked(settings_.asksForPlace());
    select(theme_, themeNumber(QString::fromStdString(VLInfoValue(VLInfoKeySupplyID))));
    sound_->setChecked(setting.isPlaySound());
    highResolution_->setChecked(setting.isHighResolution());
    stepAside_->setChecked(settings_.stepsAside());
    statistics_->setChecked(settings_.sendsStatistics());
    crashes_->setChecked(settings_.reportsCrashes());
}

void PreferencesDialog::showDefaults() {
    auto& setting = componentSetting();
    folder_->setText(QString::fromStdString(setting.defaultValueOfSavePath()));
    prefix_->setText(QString::fromStdString(setting.defaultValueOfFileNamePrefix()));
    select(fileType_, QVariant::fromValue<qulonglong>(setting.defaultValueOfFileType()));
    sound_->setChecked(setting.defaultValueOfPlaySound());
    highResolution_->setChecked(setting.defaultValueOfResolution());
    theme_->setCurrentIndex(0);
    for (QCheckBox* check : {ask_, stepAside_, statistics_, crashes_}) check->setChecked(true);
}

void PreferencesDialog::chooseFolder() {
    const QString chosen =
        QFileDialog::getExistingDirectory(this, text("Choose a Folder"), fullPath(folder_->text()));
    if (!chosen.isEmpty()) folder_->setText(chosen);
}

/// A folder that is set already is left alone, also when it no longer exists.
void PreferencesDialog::checkFolder() {
    const QFileInfo folder(fullPath(folder_->text()));
    const bool unchanged = folder_->text().toStdString() == componentSetting().lastSavePath();
    const bool usable = folder.isAbsolute() && folder.isDir() && folder.isWritable();
    folderNote_->setVisible(!usable && !unchanged);
    buttons_->button(QDialogButtonBox::Ok)->setEnabled(usable || unchanged);
}

void PreferencesDialog::accept() {
    auto& setting = componentSetting();
    setting.setLastSavePath(folder_->text().toStdString());
    setting.setFileType(fileType_->currentData().toULongLong());
    setting.setPlaySound(sound_->isChecked());
    setting.setHighResolution(highResolution_->isChecked());
    settings_.setFileNamePrefix(prefix_->text());
    settings_.setAsksForPlace(ask_->isChecked());
    settings_.setStepsAside(stepAside_->isChecked());
    const QString theme = theme_->currentData().toString();
    if (theme != themeNumber(QString::fromStdString(VLInfoValue(VLInfoKeySupplyID))))
        settings_.setSupplyID(theme);
    settings_.setSendsStatistics(statistics_->isChecked());
    settings_.setReportsCrashes(crashes_->isChecked());
    QDialog::accept();
}
