#pragma once

#include <random>

#include "NEX/NEX+PAK/SerializationPAK/compact/PakDecodeException.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakOutputStream.h"
#include "tests/NEX/NEX+PAK/SerializationPAK/PakTestSupport.h"

namespace vorla::test {

/// A record with a field of each kind, and others like itself inside.
struct Buoy {
    static constexpr const char* structName = "SEA.Buoy";
    char cState = 0;
    int16_t nDepth = 0;
    int32_t iNumber = 0;
    int64_t lTime = 0;
    float fWind = 0;
    double dHeight = 0;
    std::string sName = {};
    PakData vPicture = {};
    std::vector<int32_t> vWaves = {};
    std::vector<std::string> vNotes = {};
    std::map<std::string, std::string> mTags = {};
    std::map<std::string, std::vector<double>> mSeries = {};
    std::vector<Buoy> vNear = {};

    void writeTo(analyticspak::PakOutputStream& stream) const {
        stream.write(cState, 0);
        stream.write(nDepth, 1);
        stream.write(iNumber, 2);
        stream.write(lTime, 3);
        stream.write(fWind, 14);
        stream.write(dHeight, 15);
        stream.write(sName, 16);
        stream.write(vPicture, 17);
        stream.write(vWaves, 100);
        stream.write(vNotes, 101);
        stream.write(mTags, 102);
        stream.write(mSeries, 103);
        stream.write(vNear, 255);
    }
    void readFrom(analyticspak::PakInputStream& stream) {
        stream.read(cState, 0, false);
        stream.read(nDepth, 1, false);
        stream.read(iNumber, 2);
        stream.read(lTime, 3, false);
        stream.read(fWind, 14, false);
        stream.read(dHeight, 15, false);
        stream.read(sName, 16, false);
        stream.read(vPicture, 17, false);
        stream.read(vWaves, 100, false);
        stream.read(vNotes, 101, false);
        stream.read(mTags, 102, false);
        stream.read(mSeries, 103, false);
        stream.read(vNear, 255, false);
    }
};

/// The same structure as the object layer declares it.
class DeclaredBuoy : public PakObjectV2 {
    PAK_OBJECT_V2(DeclaredBuoy, "SEA.Buoy")
    PAK_FIELD(int8_t, pakv2_p_0_o_cState, cState)
    PAK_FIELD(int16_t, pakv2_p_1_o_nDepth, nDepth)
    PAK_FIELD(int32_t, pakv2_p_2_r_iNumber, iNumber)
    PAK_FIELD(int64_t, pakv2_p_3_o_lTime, lTime)
    PAK_FIELD(float, pakv2_p_14_o_fWind, fWind)
    PAK_FIELD(double, pakv2_p_15_o_dHeight, dHeight)
    PAK_FIELD(std::string, pakv2_p_16_o_sName, sName)
    PAK_FIELD(PakData, pakv2_p_17_o_vPicture, vPicture)
    PAK_FIELD(PakArray, pakv2_p_100_o_vWaves__b0x9i_VONSNumber, vWaves)
    PAK_FIELD(PakArray, pakv2_p_101_o_vNotes__b0x9i_VONSString, vNotes)
    PAK_FIELD(PakDictionary, pakv2_p_102_o_mTags__b0x9i_M09ONSStringONSString, mTags)
    PAK_FIELD(PakDictionary, pakv2_p_103_o_mSeries__b0x9i_M09ONSStringVONSNumber, mSeries)
    PAK_FIELD(PakArray, pakv2_p_255_o_vNear__b0x9i_VODeclaredBuoy, vNear)
};

inline PakData encoded(const Buoy& buoy) {
    return analyticspak::bytesOfRecord(buoy);
}
inline Buoy decoded(std::span<const uint8_t> bytes) {
    return analyticspak::recordOfBytes<Buoy>(bytes);
}

/// Random buoys whose numbers fall on all widths. The same seed produces the same buoys.
class BuoyYard {
 public:
    explicit BuoyYard(unsigned seed) : random_(seed) {}

    Buoy make(int levels) {
        Buoy buoy;
        buoy.cState = static_cast<char>(number());
        buoy.nDepth = static_cast<int16_t>(number());
        buoy.iNumber = static_cast<int32_t>(number());
        buoy.lTime = number();
        buoy.fWind = static_cast<float>(number());
        buoy.dHeight = static_cast<double>(number()) / 3;
        buoy.sName = text();
        for (size_t n = count(400); n > 0; --n)
            buoy.vPicture.push_back(static_cast<uint8_t>(random_()));
        for (size_t n = count(100); n > 0; --n)
            buoy.vWaves.push_back(static_cast<int32_t>(number()));
        for (size_t n = count(100); n > 0; --n) buoy.vNotes.push_back(text());
        for (size_t n = count(10); n > 0; --n) buoy.mTags[text()] = text();
        for (size_t n = count(5); n > 0; --n)
            buoy.mSeries[text()] = {1.5, static_cast<double>(number())};
        for (size_t n = levels > 0 ? count(3) : 0; n > 0; --n)
            buoy.vNear.push_back(make(levels - 1));
        return buoy;
    }

 private:
    size_t count(size_t most) { return random_() % 2 == 0 ? 0 : random_() % (most + 1); }
    int64_t number() {
        const uint64_t bits = uint64_t{random_()} << 32 | random_();
        return static_cast<int64_t>(bits) >> (random_() % 65 % 64);
    }
    std::string text() {
        static constexpr const char* kPieces[] = {"a", "Z", " ", "é", "中", "\U0001F600"};
        std::string made;
        for (size_t n = count(200); n > 0; --n) made += kPieces[random_() % 6];
        return made;
    }
    std::mt19937 random_;
};

}  // namespace vorla::test
