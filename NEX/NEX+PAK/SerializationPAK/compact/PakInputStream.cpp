#include "NEX/NEX+PAK/SerializationPAK/compact/PakInputStream.h"

#include <cstdio>

#include "NEX/NEX+PAK/SerializationPAK/compact/PakDecodeException.h"

namespace analyticspak {

void PakInputStream::enter() {
    constexpr int kMost = vorla::PakLimits::kNestingCompact;
    if (nesting_ >= kMost) raiseDecode("nested too deeply, over %d levels.", kMost);
    ++nesting_;
}

bool PakInputStream::skipToTag(uint8_t tag) {
    try {
        DataHead head;
        for (;;) {
            const size_t length = head.peekFrom(reader_);
            if (head.tag >= tag || head.type == PAK_TYPE_STRUCT_E) return head.tag == tag;
            reader_.skip(length);
            skipField(head.type);
        }
    } catch (const PakDecodeException& failure) {
        std::printf("WARN: skipToTag '%d' occur a PakDecodeException[%s]. \n", tag, failure.what());
        // What lies behind broken bytes cannot be known from them. Nothing more is looked for: a
        // long row of broken fields would else cost an exception for each.
        reader_.skip(reader_.left());
    }
    return false;
}

bool PakInputStream::findFieldAhead(uint8_t tag, uint8_t& type) {
    if (!skipToTag(tag)) return false;
    DataHead head;
    head.readFrom(reader_);
    type = head.type;
    return true;
}

void PakInputStream::skipField() {
    DataHead head;
    head.readFrom(reader_);
    skipField(head.type);
}

void PakInputStream::skipField(uint8_t type) {
    switch (type) {
        case PAK_TYPE_INT1:
            return reader_.skip(1);
        case PAK_TYPE_INT2:
            return reader_.skip(2);
        case PAK_TYPE_INT4:
        case PAK_TYPE_FLOAT:
            return reader_.skip(4);
        case PAK_TYPE_INT8:
        case PAK_TYPE_DOUBLE:
            return reader_.skip(8);
        case PAK_TYPE_STRING1: {
            uint8_t length = 0;
            reader_.readBuf(&length, 1);
            return reader_.skip(length);
        }
        case PAK_TYPE_STRING4: {
            int32_t length = 0;
            unpack_32(reader_.take(4).data(), length);
            return reader_.skip(static_cast<uint32_t>(length));
        }
        case PAK_TYPE_MAP:
        case PAK_TYPE_LIST: {
            const Nesting level(*this);
            const int64_t fields = int64_t{readCount()} * (type == PAK_TYPE_MAP ? 2 : 1);
            for (int64_t i = 0; i < fields; ++i) skipField();
            return;
        }
        case PAK_TYPE_STRUCT_S: {
            const Nesting level(*this);
            return skipToStructEnd();
        }
        case PAK_TYPE_STRUCT_E:
        case PAK_TYPE_ZERO:
            return;
        case PAK_TYPE_SIMPLE_LIST: {
            DataHead element;
            element.readFrom(reader_);
            if (element.type != PAK_TYPE_INT1)
                raiseDecode("skipField with invalid type, type value: %d, %d.", type, element.type);
            // A negative count is as far behind the end as any other that is too large.
            return reader_.skip(static_cast<uint32_t>(readCount()));
        }
        default:
            raiseDecode("skipField with invalid type, type value:%d.", type);
    }
}

void PakInputStream::skipToStructEnd() {
    DataHead head;
    do {
        head.readFrom(reader_);
        skipField(head.type);
    } while (head.type != PAK_TYPE_STRUCT_E);
}

int64_t PakInputStream::bigEndianNearEnd(size_t width) {
    const auto bytes = reader_.take(width);
    int64_t value = static_cast<int8_t>(bytes[0]);
    for (size_t i = 1; i < width; ++i)
        value = static_cast<int64_t>(static_cast<uint64_t>(value) << 8 | bytes[i]);
    return value;
}

void PakInputStream::read(uint32_t& value, uint8_t tag, bool required) {
    uint8_t type = 0;
    if (!beginField(tag, required, type)) return;
    if (type > PAK_TYPE_INT8 && type != PAK_TYPE_ZERO) raiseMismatch("UInt32", tag, type);
    const int64_t stored = type == PAK_TYPE_ZERO ? 0 : bigEndian(type);
    if (stored < 0 || stored > UINT32_MAX) raiseDecode("invalid 'UInt32', tag: %d", tag);
    value = static_cast<uint32_t>(stored);
}

void PakInputStream::read(float& value, uint8_t tag, bool required) {
    uint8_t type = 0;
    if (!beginField(tag, required, type)) return;
    if (type != PAK_TYPE_FLOAT) raiseMismatch("Float", tag, type);
    int32_t bits = 0;
    unpack_32(reader_.take(sizeof bits).data(), bits);
    value = std::bit_cast<float>(bits);
}

void PakInputStream::read(double& value, uint8_t tag, bool required) {
    uint8_t type = 0;
    if (!beginField(tag, required, type)) return;
    if (type != PAK_TYPE_DOUBLE) raiseMismatch("Double", tag, type);
    int64_t bits = 0;
    unpack_64(reader_.take(sizeof bits).data(), bits);
    value = std::bit_cast<double>(bits);
}

void PakInputStream::read(std::string& value, uint8_t tag, bool required) {
    uint8_t type = 0;
    if (!beginField(tag, required, type)) return;
    uint32_t length = 0;
    if (type == PAK_TYPE_STRING1) {
        length = reader_.take(1)[0];
    } else if (type == PAK_TYPE_STRING4) {
        int32_t stored = 0;
        unpack_32(reader_.take(sizeof stored).data(), stored);
        length = static_cast<uint32_t>(stored);
        if (length > kMaxStringLength)
            raiseDecodeLong("invalid string size, tag: %d, size: %d", tag, stored);
    } else {
        raiseMismatch("string", tag, type);
    }
    const auto bytes = reader_.take(length);
    value.assign(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

std::span<const uint8_t> PakInputStream::takeSimpleList(uint8_t tag) {
    DataHead element;
    element.readFrom(reader_);
    if (element.type != PAK_TYPE_INT1)
        raiseDecode("type mismatch, tag: %d, type: %d, %d", tag, PAK_TYPE_SIMPLE_LIST,
                    element.type);
    const int32_t size = readCount();
    if (size < 0)
        raiseDecode("invalid size, tag: %d, type: %d, %d, size: %d", tag, PAK_TYPE_SIMPLE_LIST,
                    element.type, size);
    return reader_.take(static_cast<size_t>(size));
}

void PakInputStream::raiseMissing(uint8_t tag) {
    raiseDecode("require field not exist, tag: %d", tag);
}

void PakInputStream::raiseMissingChar(uint8_t tag) {
    raiseDecode("require field not exist, tag: %d.", tag);
}

void PakInputStream::raiseMismatch(const char* wanted, uint8_t tag, uint8_t type) {
    raiseDecode("read '%s' type mismatch, tag: %d, get type: %d.", wanted, tag, type);
}

void PakInputStream::raiseBytesType(uint8_t tag, uint8_t type) {
    raiseDecode("type mismatch, tag: %d, type: %d", tag, type);
}

void PakInputStream::raiseBytesSize(uint8_t tag, uint8_t type, int32_t size) {
    raiseDecode("invalid size, tag: %d, type: %d, size: %d", tag, type, size);
}

void PakInputStream::raiseMapSize(uint8_t tag, int32_t size) {
    raiseDecode("invalid map, tag: %d, size: %d", tag, size);
}

void PakInputStream::raiseListSize(uint8_t tag, int32_t size) {
    raiseDecode("invalid list, tag: %d, size: %d", tag, size);
}

void PakInputStream::raiseBudget(const char* container, uint8_t tag, int32_t size) {
    raiseDecode("%s too large for its bytes, tag: %d, size: %d", container, tag, size);
}

}  // namespace analyticspak
