// A reply as a server may send it. The body's encryption would keep a fuzzer out, so the input is
// taken as the reply, as what the encryption hides, and as the strategy that is in there.

#include <cstddef>
#include <cstdint>

#include "crash/upload/CvrZipUtil.h"
#include "fuzz/FuzzCrashReplies.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    vorla::fuzz::prepareForReplies();
    const std::span input(bytes, size);
    CvrError error;
    (void)CvrReqDataPackage().initWithRspData(input, error);
    (void)GZipCvrZipUtil().unzip(input);
    cvr::ResponsePkg record;
    record.cmd = CvrCommandQueryStrategy;
    record.sBuffer.assign(input.begin(), input.end());
    CvrResponsePackage().initWithNEXModel(record);
    return 0;
}
