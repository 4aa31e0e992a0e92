#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"

#include <algorithm>
#include <limits>

#include "NEX/NEX+PAK/SerializationPAK/PakClass.h"
#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakObject.h"

using vorla::pakAssert;
using vorla::pakFail;
using vorla::pakRaise;

/// One level of containers for as long as it lives.
class PakInputStream::Nesting {
 public:
    explicit Nesting(PakInputStream& stream) : stream_(stream) {
        pakAssert(stream_.nesting_ < vorla::PakLimits::kNestingStream, "0");
        ++stream_.nesting_;
    }
    ~Nesting() { --stream_.nesting_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

 private:
    PakInputStream& stream_;
};

PakInputStream::PakInputStream(std::span<const uint8_t> source) : budget_(source.size()) {
    constexpr size_t kMost = std::numeric_limits<int32_t>::max();
    streamBuffer_ = const_cast<uint8_t*>(source.data());
    streamSize_ = static_cast<int32_t>(std::min(source.size(), kMost));
}

PakInputStream::PakInputStream(PakData source) : PakInputStream(std::span<const uint8_t>(source)) {
    // Moving a vector keeps its elements where they are.
    dataHolders_ = std::move(source);
}

std::unique_ptr<PakInputStream> PakInputStream::streamWithData(std::optional<PakData> data) {
    return data ? std::make_unique<PakInputStream>(std::move(*data)) : nullptr;
}

std::optional<PakData> PakInputStream::data() const {
    return PakData(streamBuffer_, streamBuffer_ + streamSize_);
}

bool PakInputStream::peakHead() {
    if (cursor_ < 0 || cursor_ >= streamSize_) return false;
    const uint8_t first = streamBuffer_[cursor_];
    int32_t tag = first >> 4;
    if (tag == 15) {
        if (streamSize_ - cursor_ < 2) return false;
        tag = streamBuffer_[cursor_ + 1];
    }
    headType_ = first & 0x0F;
    headTag_ = tag;
    return true;
}

bool PakInputStream::readHead() {
    if (!peakHead()) return false;
    cursor_ += streamBuffer_[cursor_] >= 0xF0 ? 2 : 1;
    return true;
}

bool PakInputStream::beginOtherField(int32_t tag, bool required) {
    if (!peakHead() || headTag_ != tag) {
        pakAssert(!required, "required == NO");
        return false;
    }
    return readHead();
}

std::span<const uint8_t> PakInputStream::take(int64_t length) {
    const bool inside = cursor_ >= 0 && length >= 0 && length <= streamSize_ - int64_t{cursor_};
    pakAssert(inside, "_cursor + length <= _streamSize");
    const uint8_t* from = streamBuffer_ + cursor_;
    cursor_ += static_cast<int32_t>(length);
    return {from, static_cast<size_t>(length)};
}

int8_t PakInputStream::readInt1() {
    int8_t value = 0;
    unpack_8(take(1).data(), value);
    return value;
}

int16_t PakInputStream::readInt2() {
    int16_t value = 0;
    unpack_16(take(2).data(), value);
    return value;
}

int32_t PakInputStream::readInt4() {
    int32_t value = 0;
    unpack_32(take(4).data(), value);
    return value;
}

int64_t PakInputStream::readInt8() {
    int64_t value = 0;
    unpack_64(take(8).data(), value);
    return value;
}

float PakInputStream::readFloat() {
    return std::bit_cast<float>(readInt4());
}
double PakInputStream::readDouble() {
    return std::bit_cast<double>(readInt8());
}

std::unique_ptr<uint8_t[]> PakInputStream::readBytes(uint32_t length) {
    const auto bytes = take(length);
    auto copy = std::make_unique_for_overwrite<uint8_t[]>(bytes.size());
    std::ranges::copy(bytes, copy.get());
    return copy;
}

PakData PakInputStream::readDataWithSize(uint32_t size) {
    const auto bytes = take(size);
    return {bytes.begin(), bytes.end()};
}

void PakInputStream::skip(int64_t count) {
    const int64_t left = std::max<int64_t>(streamSize_ - int64_t{cursor_}, 0);
    cursor_ += static_cast<int32_t>(std::clamp<int64_t>(count, 0, left));
    cursor_ = std::min(cursor_, streamSize_);
}

int64_t PakInputStream::readInt(int32_t tag) {
    pakAssert(readHead() && headTag_ == tag, "_headTag == tag");
    return takeInteger();
}

int64_t PakInputStream::takeIntegerNearEnd() {
    switch (headType_) {
        case PAK_TYPE_INT1:
            return readInt1();
        case PAK_TYPE_INT2:
            return readInt2();
        case PAK_TYPE_INT4:
            return readInt4();
        case PAK_TYPE_INT8:
            return readInt8();
        case PAK_TYPE_ZERO:
            return 0;
        default:
            pakFail("0");
    }
}

float PakInputStream::readFloat(int32_t tag) {
    pakAssert(readHead() && headTag_ == tag, "_headTag == tag");
    pakAssert(headType_ == PAK_TYPE_FLOAT, "_headType == PAK_TYPE_FLOAT");
    return readFloat();
}

double PakInputStream::readDouble(int32_t tag) {
    pakAssert(readHead() && headTag_ == tag, "_headTag == tag");
    pakAssert(headType_ == PAK_TYPE_DOUBLE, "_headType == PAK_TYPE_DOUBLE");
    return readDouble();
}

template <typename Call>
auto PakInputStream::takeNumber(Call call) {
    switch (headType_) {
        case PAK_TYPE_INT1:
            return call(readInt1());
        case PAK_TYPE_INT2:
            return call(readInt2());
        case PAK_TYPE_INT4:
            return call(readInt4());
        case PAK_TYPE_INT8:
            return call(readInt8());
        case PAK_TYPE_FLOAT:
            return call(readFloat());
        case PAK_TYPE_DOUBLE:
            return call(readDouble());
        case PAK_TYPE_ZERO:
            return call(int8_t{0});
        default:
            pakFail("0");
    }
}

PakValue PakInputStream::readNumber(int32_t tag, bool required) {
    if (!beginField(tag, required)) return {};
    return takeNumber([](auto number) { return PakValue(number); });
}

std::optional<std::string_view> PakInputStream::readStringView(int32_t tag, bool required) {
    if (!beginField(tag, required)) return std::nullopt;
    int64_t length = 0;
    switch (headType_) {
        case PAK_TYPE_STRING1:
            length = static_cast<uint8_t>(readInt1());
            break;
        case PAK_TYPE_STRING4:
            length = static_cast<uint32_t>(readInt4());
            break;
        default:
            pakFail("0");
    }
    const auto bytes = take(length);
    stringLength_ = static_cast<int32_t>(length);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!text.empty() && !vorla::isValidUtf8(text)) return std::nullopt;
    return text;
}

std::optional<std::string> PakInputStream::readString(int32_t tag, bool required) {
    const auto text = readStringView(tag, required);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::span<const uint8_t> PakInputStream::takeSimpleList() {
    return take(readInt(0));
}

std::optional<std::span<const uint8_t>> PakInputStream::readDataView(int32_t tag, bool required) {
    if (!peakHead() || headTag_ != tag) {
        if (required) pakRaise("");
        return std::nullopt;
    }
    readHead();
    if (headType_ != PAK_TYPE_SIMPLE_LIST) pakRaise("");
    if (!readHead() || headType_ != PAK_TYPE_INT1 || headTag_ != 0) pakRaise("");
    return takeSimpleList();
}

std::optional<PakData> PakInputStream::readData(int32_t tag, bool required) {
    const auto bytes = readDataView(tag, required);
    if (!bytes) return std::nullopt;
    return PakData(bytes->begin(), bytes->end());
}

PakObjectPtr PakInputStream::readObject(int32_t tag, bool required, const PakClass& description) {
    if (!beginField(tag, required)) return nullptr;
    pakAssert(headType_ == PAK_TYPE_STRUCT_S, "_headType == PAK_TYPE_STRUCT_S");
    const Nesting level(*this);
    spend(description.instanceSize());
    PakObjectPtr object = description.object();
    if (peakHead() && headTag_ == 0 && headType_ == PAK_TYPE_STRUCT_E) {
        readHead();
        return object;
    }
    pakAssert(object != nullptr, "[obj respondsToSelector:@selector(__unpack:)]");
    object->__unpack(*this);
    skipToStructureEnd();
    return object;
}

void PakInputStream::skipToStructureEnd() {
    for (int depth = 1; depth > 0;) {
        pakAssert(readHead(), "_headType == PAK_TYPE_STRUCT_E");
        switch (headType_) {
            case PAK_TYPE_INT1:
                take(1);
                break;
            case PAK_TYPE_INT2:
                take(2);
                break;
            case PAK_TYPE_INT4:
            case PAK_TYPE_FLOAT:
                take(4);
                break;
            case PAK_TYPE_INT8:
            case PAK_TYPE_DOUBLE:
                take(8);
                break;
            case PAK_TYPE_STRING1:
                take(static_cast<uint8_t>(readInt1()));
                break;
            case PAK_TYPE_STRING4:
                take(static_cast<uint32_t>(readInt4()));
                break;
            // Entries and elements are fields in their own right: the walk meets them next.
            case PAK_TYPE_MAP:
            case PAK_TYPE_LIST:
                readInt(0);
                break;
            case PAK_TYPE_STRUCT_S:
                ++depth;
                break;
            case PAK_TYPE_STRUCT_E:
                --depth;
                break;
            case PAK_TYPE_ZERO:
                break;
            case PAK_TYPE_SIMPLE_LIST: {
                const bool bytes = readHead() && headType_ == PAK_TYPE_INT1 && headTag_ == 0;
                pakAssert(bytes, "_headType == PAK_TYPE_INT1 && _headTag == 0");
                takeSimpleList();
                break;
            }
            default:
                pakFail("0");
        }
    }
}

void PakInputStream::spendTrusted(size_t memory) {
    pakAssert(!vorla::pakFailuresAreCaught() && !trusted_, "memory of the stream");
    trusted_ = true;
    budget_.add(vorla::PakLimits::kMemoryTrusted);
    spend(memory);
}

size_t PakInputStream::elementsToReserve(int64_t announced, PakValue::Kind kind) {
    const size_t fewestBytes = kind == PakValue::Kind::Number ? 1 : 2;
    const auto left = static_cast<size_t>(streamSize_ - cursor_) / fewestBytes;
    const size_t most = announced <= 0 ? 0 : std::min(static_cast<size_t>(announced), left);
    spend(most * sizeof(PakValue));
    return most;
}

std::optional<PakArray> PakInputStream::readArray(int32_t tag, bool required,
                                                  const PakDescription& description) {
    if (!beginField(tag, required)) return std::nullopt;
    pakAssert(headType_ == PAK_TYPE_LIST, "_headType == PAK_TYPE_LIST");
    const Nesting level(*this);
    const int64_t count = readInt(0);
    const PakClass* const expected = description.asClass();
    const auto kind = expected ? expected->kind() : PakValue::Kind::Nothing;
    PakArray array;
    array.reserve(elementsToReserve(count, kind));
    for (int64_t i = 0; i < count; ++i) {
        // Numbers and objects, which long lists are mostly made of, are made in their place.
        if (kind == PakValue::Kind::Number) {
            beginField(0, true);
            takeNumber([&](auto number) { array.emplace_back(number); });
        } else if (kind == PakValue::Kind::Object) {
            if (auto object = readObject(0, true, *expected)) array.emplace_back(std::move(object));
        } else if (PakValue element = readAnything(0, true, description)) {
            array.push_back(std::move(element));
        }
    }
    return array;
}

std::optional<PakDictionary> PakInputStream::readDictionary(int32_t tag, bool required,
                                                            const PakDescription& description) {
    if (!beginField(tag, required)) return std::nullopt;
    pakAssert(headType_ == PAK_TYPE_MAP, "_headType == PAK_TYPE_MAP");
    const Nesting level(*this);
    const auto& pair = description.asPair();
    const int64_t count = readInt(0);
    PakDictionary dictionary;
    for (int64_t i = 0; i < count; ++i) {
        PakValue key = readAnything(0, true, pair ? pair->key : PakDescription());
        PakValue value = readAnything(1, true, pair ? pair->value : PakDescription());
        if (!key || !value) continue;
        // Sorted input, the common one, is appended without a search.
        const size_t before = dictionary.size();
        const auto place =
            dictionary.insert_or_assign(dictionary.end(), std::move(key), PakValue());
        if (dictionary.size() > before) spend(sizeof *place + vorla::PakLimits::kMapEntry);
        place->second = std::move(value);
    }
    return dictionary;
}

PakValue PakInputStream::readAnything(int32_t tag, bool required,
                                      const PakDescription& description) {
    if (const auto& pair = description.asPair()) {
        spend(sizeof(PakDictionary) + vorla::PakLimits::kBlock);
        if (pair->key) return readDictionary(tag, required, description);
        return readArray(tag, required, pair->value);
    }
    const PakClass* expected = description.asClass();
    switch (expected ? expected->kind() : PakValue::Kind::Nothing) {
        case PakValue::Kind::Number:
            return readNumber(tag, required);
        case PakValue::Kind::String:
            return readStringView(tag, required);
        case PakValue::Kind::Object:
            return readObject(tag, required, *expected);
        case PakValue::Kind::Data:
            return readDataView(tag, required);
        default:
            pakFail("0");
    }
}
