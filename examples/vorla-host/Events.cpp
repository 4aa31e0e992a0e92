#include "Events.h"

#include <QJsonDocument>
#include <cstdio>

namespace {

bool toStandardError = false;

}  // namespace

void reportToStandardError() {
    toStandardError = true;
}

void report(const QJsonObject& event) {
    std::FILE* const stream = toStandardError ? stderr : stdout;
    const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stream);
    std::fflush(stream);
}

void report(const char* event) {
    report(QJsonObject{{"event", event}});
}
