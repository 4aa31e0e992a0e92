#pragma once

#include <QDialog>

class HostSettings;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;

/// Shows the settings, this program's and the component's, and stores them when it is accepted.
class PreferencesDialog : public QDialog {
 public:
    /// The settings outlive the dialog.
    PreferencesDialog(HostSettings& settings, QWidget* parent);

    void accept() override;

 private:
    QWidget* makeSavingBox();
    QWidget* makeCapturingBox();
    QWidget* makePrivacyBox();
    QWidget* makeFolderRow();
    void showStored();
    void showDefaults();
    void chooseFolder();
    void checkFolder();

    HostSettings& settings_;
    QLineEdit* folder_;
    QLabel* folderNote_;
    QLineEdit* prefix_;
    QComboBox* fileType_;
    QCheckBox* ask_;
    QComboBox* theme_;
    QCheckBox* sound_;
    QCheckBox* highResolution_;
    QCheckBox* stepAside_;
    QCheckBox* statistics_;
    QCheckBox* crashes_;
    QDialogButtonBox* buttons_;
};
