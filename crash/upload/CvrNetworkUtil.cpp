#include "crash/upload/CvrNetworkUtil.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <unistd.h>

#include <memory>

#include "crash/CvrLog.h"

namespace {

struct AddressesDeleter {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};
using Addresses = std::unique_ptr<ifaddrs, AddressesDeleter>;

Addresses allAddresses(bool* failed = nullptr) {
    ifaddrs* list = nullptr;
    const bool none = ::getifaddrs(&list) != 0;
    if (failed) *failed = none;
    return Addresses(none ? nullptr : list);
}

bool leadsOutside(const ifaddrs& one) {
    constexpr unsigned wanted = IFF_UP | IFF_RUNNING;
    if ((one.ifa_flags & (wanted | IFF_LOOPBACK)) != wanted || !one.ifa_addr) return false;
    return one.ifa_addr->sa_family == AF_INET || one.ifa_addr->sa_family == AF_INET6;
}

bool isWireless(const ifaddrs& one) {
    const std::string path = std::string("/sys/class/net/") + one.ifa_name + "/wireless";
    return ::access(path.c_str(), F_OK) == 0;
}

bool isMobile(const ifaddrs& one) {
    const std::string name = one.ifa_name;
    return name.starts_with("ww") || name.starts_with("ppp");
}

template <typename Test>
const ifaddrs* firstOutside(const Addresses& addresses, Test test) {
    for (const ifaddrs* one = addresses.get(); one; one = one->ifa_next)
        if (leadsOutside(*one) && test(*one)) return one;
    return nullptr;
}

std::string addressText(const ifaddrs& one) {
    char text[INET6_ADDRSTRLEN] = "";
    const sockaddr* address = one.ifa_addr;
    if (address->sa_family == AF_INET)
        ::inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(address)->sin_addr, text,
                    sizeof text);
    else
        ::inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr, text,
                    sizeof text);
    return text;
}

constexpr auto any = [](const ifaddrs&) { return true; };

}  // namespace

bool CvrNetworkUtil::pingReachabilityInternal() {
    bool failed = false;
    const Addresses addresses = allAddresses(&failed);
    if (failed) CvrLogError("<ERROR> CVR: Error. Could not recover network reachability flags\n");
    return firstOutside(addresses, any) != nullptr;
}

bool CvrNetworkUtil::networkAvaliable() {
    return pingReachabilityInternal();
}

bool CvrNetworkUtil::activeWLAN() {
    return firstOutside(allAddresses(), isWireless) != nullptr;
}

bool CvrNetworkUtil::activeWWAN() {
    return firstOutside(allAddresses(), isMobile) != nullptr;
}

uint64_t CvrNetworkUtil::networkType() {
    if (activeWLAN()) return networkTypeWireless;
    return activeWWAN() ? networkTypeMobile : networkTypeUnknown;
}

std::string CvrNetworkUtil::localWiFiIPAddress() {
    const Addresses addresses = allAddresses();
    const ifaddrs* found = firstOutside(addresses, isWireless);
    if (!found) found = firstOutside(addresses, any);
    return found ? addressText(*found) : "";
}
