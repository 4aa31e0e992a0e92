#include "crash/module/CvrHandlerCapture.h"

#include "crash/CvrCrashHandler.h"
#include "crash/CvrNSExpHandler.h"
#include "crash/CvrSigHandler.h"
#include "crash/CvrStackCollector.h"

void CvrHandlerCapture::prepare(const CvrPreparedCrash& state) {
    CvrCrashHandler::sharedInstance().prepare(state);
}
void CvrHandlerCapture::installHandler() {
    CvrCrashHandler::sharedInstance().installHandler();
}
void CvrHandlerCapture::uninstallHandler() {
    CvrCrashHandler::sharedInstance().uninstallHandler();
}
bool CvrHandlerCapture::checkSignalHandler() {
    return CvrSigHandler::sharedInstance().checkHandler();
}
bool CvrHandlerCapture::checkNSExceptionHandler() {
    return CvrNSExpHandler::sharedInstance().checkHandler();
}
void CvrHandlerCapture::registCrashListerner(CvrCrashListener* listener) {
    CvrCrashHandler::sharedInstance().registCrashListerner(listener);
}
void CvrHandlerCapture::setExpMergeStrategy(bool merge) {
    CvrCrashHandler::sharedInstance().setExpMergeStrategy(merge);
}
bool CvrHandlerCapture::isExpMergeUpload() {
    return CvrCrashHandler::sharedInstance().isExpMergeUpload();
}
void CvrHandlerCapture::setProcName(const std::string& name) {
    CvrStackCollector::sharedInstance().setProcName(name);
}
