#include "crash/upload/CvrHttpTransport.h"

vorla::HTTPLimits CvrHttpTransport::defaultLimits() {
    vorla::HTTPLimits limits;
    limits.total = std::chrono::seconds(120);
    return limits;
}

void CvrHttpTransport::send(vorla::HTTPRequest request, Completion completion) {
    session_.dataTaskWithRequest(std::move(request), {}, {}, std::move(completion),
                                 vorla::CompletionQueue::Session);
}
