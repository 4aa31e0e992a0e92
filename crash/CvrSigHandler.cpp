#include "crash/CvrSigHandler.h"

#include "crash/CvrLog.h"
#include "crash/handler/AlternateStack.h"
#include "crash/handler/FaultHandler.h"
#include "platform/base/VLLog.h"

CvrSigHandler& CvrSigHandler::sharedInstance() {
    static vorla::NoDestructor<CvrSigHandler> instance;
    return *instance;
}

void CvrSigHandler::enableHandler(bool enable) {
    const std::lock_guard lock(mutex_);
    handlerEnable_ = enable;
}

bool CvrSigHandler::install() {
    const vorla::LogHold hold;
    const std::lock_guard lock(mutex_);
    if (!handlerEnable_) {
        CvrLogWarn("<WARN> CVR: signal handler disable");
        return false;
    }
    if (vorla::crash::areSignalHandlersSet()) {
        CvrLogError("<ERROR> CVR: signal handler already installed");
        return false;
    }
    if (!InitAltStack() || !vorla::crash::prepareForFaults()) return false;
    if (vorla::crash::setSignalHandlers()) return true;
    CvrLogError("<ERROR> CVR: install sighandler fialed, uninstall it");
    UnInitAltStack();
    return false;
}

bool CvrSigHandler::uninstall() {
    const vorla::LogHold hold;
    const std::lock_guard lock(mutex_);
    if (!vorla::crash::areSignalHandlersSet()) {
        CvrLogError("<ERROR> CVR: sighandler already uninstalled");
        return false;
    }
    UnInitAltStack();
    vorla::crash::removeSignalHandlers();
    return true;
}

bool CvrSigHandler::reset() {
    if (checkHandler()) {
        CvrLogInfo("<INFO> CVR: the signal handler exist");
        return true;
    }
    uninstall();
    const bool installed = install();
    CvrLogWarn("<WARN> CVR: reset the signal handler %s ", installed ? "SUCC" : "FAILED");
    return installed;
}

bool CvrSigHandler::checkHandler() {
    if (vorla::crash::isHandlerInPlace()) return true;
    CvrLogWarn("<WARN> CVR: &&&&&&cvr sighandler is overwrited");
    return false;
}

bool CvrSigHandler::InitAltStack() {
    return vorla::crash::takeAlternateStack();
}

void CvrSigHandler::UnInitAltStack() {
    vorla::crash::dropAlternateStack();
}
