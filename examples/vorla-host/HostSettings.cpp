#include "HostSettings.h"

#include <QStandardPaths>

#include <vorla/CrashReporter.h>
#include <vorla/VLCaptureDefaultSetting.h>
#include <vorla/VLCaptureRequest.h>
#include <vorla/VLCaptureSetting.h>
#include <vorla/VLInfo.h>

namespace {

constexpr const char* keyAsk = "saving/ask";
constexpr const char* keyPrefix = "saving/prefix";
constexpr const char* keyStepAside = "capturing/stepAside";
constexpr const char* keySupplyID = "capturing/supplyID";
constexpr const char* keyStatistics = "privacy/statistics";
constexpr const char* keyCrashes = "privacy/crashReports";
constexpr const char* keyTrayTold = "tray/told";

}  // namespace

HostSettings::HostSettings()
    : store_(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                 "/vorla-host.ini",
             QSettings::IniFormat) {}

bool HostSettings::asksForPlace() const {
    return store_.value(keyAsk, true).toBool();
}

void HostSettings::setAsksForPlace(bool value) {
    store_.setValue(keyAsk, value);
}

QString HostSettings::fileNamePrefix() const {
    const QString prefix = store_.value(keyPrefix).toString();
    // What someone wrote into the file must not lead to another folder.
    if (!prefix.isEmpty() && !prefix.contains(u'/')) return prefix;
    return QString::fromStdString(
        VLCaptureSetting::sharedInstance().defaultValueOfFileNamePrefix());
}

void HostSettings::setFileNamePrefix(const QString& value) {
    store_.setValue(keyPrefix, value);
}

bool HostSettings::stepsAside() const {
    return store_.value(keyStepAside, true).toBool();
}

void HostSettings::setStepsAside(bool value) {
    store_.setValue(keyStepAside, value);
}

QString HostSettings::supplyID() const {
    return store_.value(keySupplyID).toString();
}

void HostSettings::setSupplyID(const QString& value) {
    store_.setValue(keySupplyID, value);
}

bool HostSettings::sendsStatistics() const {
    return store_.value(keyStatistics, true).toBool();
}

void HostSettings::setSendsStatistics(bool value) {
    store_.setValue(keyStatistics, value);
}

bool HostSettings::reportsCrashes() const {
    return store_.value(keyCrashes, true).toBool();
}

void HostSettings::setReportsCrashes(bool value) {
    store_.setValue(keyCrashes, value);
}

bool HostSettings::isFirstStayInTray() {
    const bool first = !store_.value(keyTrayTold, false).toBool();
    store_.setValue(keyTrayTold, true);
    return first;
}

void HostSettings::applyTo(VLCaptureRequest& request) const {
    request.setNeedSelectSavePath(asksForPlace());
    VLCaptureSetting::sharedInstance().setFileNamePrefix(fileNamePrefix().toStdString());
    if (!supplyID().isEmpty()) VLSetInfoValue(VLInfoKeySupplyID, supplyID().toStdString());
}

void HostSettings::applyToServices() const {
    if (!sendsStatistics()) VLSetInfoValue(VLInfoKeyStatisticsURL, "");
    if (reportsCrashes()) return;
    VLSetInfoValue(VLInfoKeyCrashSyncURL, "");
    CrashReporter::sharedInstance().enableNSExceptionReporter(false);
    CrashReporter::sharedInstance().enableSignalErrorReporter(false);
}
