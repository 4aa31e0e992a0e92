#include "NEX/NEX+PAK/SerializationPAK/compact/PakDecodeException.h"

#include <cstdarg>
#include <cstdio>

namespace analyticspak {

void raiseDecode(const char* format, ...) {
    char text[64];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    throw PakDecodeException(text);
}

void raiseDecodeLong(const char* format, ...) {
    char text[128];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    throw PakDecodeException(text);
}

}  // namespace analyticspak
