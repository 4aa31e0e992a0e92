#pragma once

#include <cstdint>
#include <string>

/// What can be said of the network without sending anything. Any thread.
class CvrNetworkUtil {
 public:
    static constexpr uint64_t networkTypeUnknown = UINT64_MAX;
    static constexpr uint64_t networkTypeWireless = 0;
    static constexpr uint64_t networkTypeMobile = 1;

    /// Whether an interface other than the loopback is up and has an address.
    static bool networkAvaliable();
    /// Whether one of the kind is among them.
    static bool activeWLAN();
    static bool activeWWAN();
    static uint64_t networkType();
    /// The first address of a wireless interface, or of any when there is none; empty for none.
    static std::string localWiFiIPAddress();
    /// The test behind `networkAvaliable`, which logs when the system does not answer it.
    static bool pingReachabilityInternal();
};
