// A program without a window that counts, and is reported when it dies: it links Vorla::Services.

#include <vorla/CrashReporter.h>
#include <vorla/VLInfo.h>
#include <vorla/VLStatistics.h>

int main() {
    VLSetInfoValue(VLInfoKeyStatisticsURL, "https://stat.example.org");
    VLSetInfoValue(VLInfoKeyCrashSyncURL, "https://crash.example.org");
    CrashReporter::sharedInstance().installWithAppkey("example");
    VLStartStatistics();  // sends what earlier runs counted
    VLStatEvent(7);       // a number of the program's own, outside 1000 to 1999
    return 0;
}
