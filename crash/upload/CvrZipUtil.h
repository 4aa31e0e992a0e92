#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

/// Compression of a body. Any thread.
class CvrZip {
 public:
    virtual ~CvrZip() = default;

    /// None for an empty input, and when memory is short.
    virtual std::optional<std::vector<uint8_t>> zip(std::span<const uint8_t> data) = 0;
    /// None for what is no compressed data as a whole, and for what unpacks to more than a body may
    /// have.
    virtual std::optional<std::vector<uint8_t>> unzip(std::span<const uint8_t> data) = 0;
};

/// gzip (RFC 1952); reads the zlib form (RFC 1950) as well.
class GZipCvrZipUtil final : public CvrZip {
 public:
    /// Of an unpacked body: stops one that unpacks to gigabytes.
    static constexpr size_t largestBody = size_t{1024} * 1024;

    std::optional<std::vector<uint8_t>> zip(std::span<const uint8_t> data) override;
    std::optional<std::vector<uint8_t>> unzip(std::span<const uint8_t> data) override;
    /// gzip with a header of our own that names another system; nothing here needs it.
    static std::optional<std::vector<uint8_t>> gzipCompress(std::span<const uint8_t> data);
};

class CvrZipUtil {
 public:
    static constexpr int gzip = 2;
    /// Null for any number but 2.
    static std::unique_ptr<CvrZip> getCvrZipUtil(int type);
};
