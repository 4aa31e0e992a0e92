// The trusting reader over a declared structure: it may refuse, never read astray; and what it has
// read it writes so that it reads the same again.

#include <cstddef>

#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"
#include "fuzz/FuzzStructures.h"

using vorla::fuzz::FuzzNode;
using vorla::fuzz::require;
using vorla::fuzz::succeeds;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    vorla::fuzz::throwOnFailedChecks();
    FuzzNode node;
    // On the heap and of exactly that size, so that a stray read is seen.
    if (!succeeds([&] { node.fromData(PakData(bytes, bytes + size)); })) return 0;
    (void)node.description();
    const PakData written = node.toData();
    FuzzNode again;
    require(succeeds([&] { again.fromData(written); }));
    require(again.toData() == written);
    succeeds([&] {
        PakInputStream stream(std::span(bytes, size));
        while (stream.readUTF8String(stream.peakHead() ? stream.headTag() : 0, true)) continue;
    });
    return 0;
}
