// A program without a window that only counts.
#include <vorla/VLInfo.h>
#include <vorla/VLStatistics.h>

#include <cstdio>

int main() {
    VLSetInfoValue(VLInfoKeySupplyID, "4000");
    VLStartStatistics();
    VLStatEvent(7);
    std::printf("counts for %s\n", VLInfoValue(VLInfoKeySupplyID).c_str());
    return 0;
}
