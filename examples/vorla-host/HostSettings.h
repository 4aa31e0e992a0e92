#pragma once

#include <QSettings>
#include <QString>

class VLCaptureRequest;

/// The user's choices that are this program's own; the component keeps the others itself
/// (VLCaptureSetting.h). Stored at once, in `$XDG_CONFIG_HOME/vorla-host.ini`.
class HostSettings {
 public:
    HostSettings();

    /// Whether saving asks for a place.
    [[nodiscard]] bool asksForPlace() const;
    void setAsksForPlace(bool value);

    /// Start of the names of saved files.
    [[nodiscard]] QString fileNamePrefix() const;
    void setFileNamePrefix(const QString& value);

    /// Whether the program's own window steps aside for a capture.
    [[nodiscard]] bool stepsAside() const;
    void setStepsAside(bool value);

    /// The product number whose theme is chosen; empty as the component comes.
    [[nodiscard]] QString supplyID() const;
    void setSupplyID(const QString& value);

    [[nodiscard]] bool sendsStatistics() const;
    void setSendsStatistics(bool value);

    [[nodiscard]] bool reportsCrashes() const;
    void setReportsCrashes(bool value);

    /// Whether this is the first time that the program stays in the tray.
    bool isFirstStayInTray();

    /// What holds from the next session on.
    void applyTo(VLCaptureRequest& request) const;
    /// What holds for the whole run: before the component's services start.
    void applyToServices() const;

 private:
    QSettings store_;
};
