#include "crash/CvrStackCollector.h"

#include "crash/handler/SessionState.h"

using vorla::crash::sessionState;

CvrStackCollector& CvrStackCollector::sharedInstance() {
    static vorla::NoDestructor<CvrStackCollector> instance;
    return *instance;
}

void CvrStackCollector::setNeedSymbol(bool need) {
    sessionState().needSymbol = need;
}

bool CvrStackCollector::needSymbol() const {
    return sessionState().needSymbol;
}

void CvrStackCollector::setProcName(const std::string& name) {
    sessionState().hasProcName = !name.empty();
}
