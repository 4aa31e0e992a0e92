#include "tests/NEX/NEX+PAK/SerializationPAK/PakTestSupport.h"

#include "NEX/NEX+PAK/SerializationPAK/PakEnumHelper.h"

namespace vorla::test {
namespace {

std::shared_ptr<WeatherReading> reading(int32_t time, double degrees) {
    auto made = WeatherReading::object();
    made->setPak_iTime(time);
    made->setPak_dDegrees(degrees);
    return made;
}

std::shared_ptr<WeatherStation> station() {
    auto made = WeatherStation::object();
    made->setPak_iNumber(300);
    made->setPak_sName("Sonnblick");
    made->setPak_stLatest(reading(9, -1.5));
    made->setPak_vReadings_All({reading(7, 0), reading(8, 2)});
    made->setPak_vSeal(bytesOf("CA FE"));
    made->setPak_mLimits(PakDictionary{{"low", -40}, {"high", 30.5}});
    return made;
}

TEST(PakObjectV2, GoesOutInTheOrderOfItsTags) {
    auto made = WeatherStation::object();
    made->setPak_sName("x");
    made->setPak_stLatest(reading(0, 1));
    EXPECT_EQ(hexOf(made->toData()), "0C 56 01 78 7A 0C 15 3F F0 00 00 00 00 00 00 0B F9 15 0C");
}

TEST(PakObjectV2, ComesBackAsItWas) {
    const PakData bytes = station()->toData();
    const auto back = pakObjectFromData<WeatherStation>(bytes);
    EXPECT_EQ(back->pak_iNumber(), 300U);
    EXPECT_EQ(back->pak_sName(), "Sonnblick");
    EXPECT_EQ(back->pak_stLatest()->pak_dDegrees(), -1.5);
    EXPECT_EQ(back->pak_vSeal(), bytesOf("CA FE"));
    EXPECT_EQ(back->pak_mLimits(), (PakDictionary{{"low", -40}, {"high", 30.5}}));
    ASSERT_EQ(back->pak_vReadings_All().size(), 2U);
    const auto second =
        std::static_pointer_cast<WeatherReading>(back->pak_vReadings_All()[1].object());
    EXPECT_EQ(second->pak_iTime(), 8);
    EXPECT_EQ(back->toData(), bytes);
    EXPECT_EQ(pakObjectFromData<WeatherStation>({}), nullptr);
}

TEST(PakObjectV2, AbsentFieldsKeepTheirValues) {
    auto kept = station();
    kept->fromData(bytesOf("00 05"));
    EXPECT_EQ(kept->pak_iNumber(), 5U);
    EXPECT_EQ(kept->pak_sName(), "Sonnblick");
    EXPECT_EQ(kept->pak_vReadings_All().size(), 2U);
    EXPECT_EQ(outcomeOf([&] { kept->fromData(bytesOf("56 01 78")); }), "required == NO");
    // An unknown field in the middle hides those behind it.
    kept->fromData(bytesOf("00 06 10 01 56 01 78"));
    EXPECT_EQ(kept->pak_sName(), "Sonnblick");
}

class Declared : public PakObjectV2 {
    PAK_OBJECT_V2(Declared, "WX.Declared")
    PAK_FIELD(bool, pakv2_p_1_o_b, b)
    PAK_FIELD(int8_t, pakv2_p_2_o_c, c)
    PAK_FIELD(uint8_t, pakv2_p_3_o_C, C)
    PAK_FIELD(int16_t, pakv2_p_4_o_s, s)
    PAK_FIELD(uint16_t, pakv2_p_5_o_S, S)
    PAK_FIELD(int32_t, pakv2_p_6_o_i, i)
    PAK_FIELD(uint32_t, pakv2_p_7_o_I, I)
    PAK_FIELD(int64_t, pakv2_p_8_o_q, q)
    PAK_FIELD(float, pakv2_p_9_o_f, f)
    PAK_FIELD(double, pakv2_p_10_o_d, d)
    PAK_FIELD(PakNumber, pakv2_p_11_o_number, number)
    PAK_FIELD(int32_t, notEncoded, notEncoded, 77)
};

TEST(PakObjectV2, EachNumberTypeHasItsLetterAndItsWidth) {
    auto made = Declared::object();
    const auto types = Declared::pakClass().pakPropertiesWithEncodedTypes();
    std::string letters;
    for (const auto& [tag, info] : made->pakPropsDescription()) letters += info.type[0];
    EXPECT_EQ(letters, "BcCsSiIqfd@");
    EXPECT_EQ(types.at("pakv2_p_11_o_number"), "@\"NSNumber\"");
    EXPECT_EQ(types.at("notEncoded"), "i");
    // Present zeros are written; the absent number object is not.
    EXPECT_EQ(hexOf(made->toData()),
              "1C 2C 3C 4C 5C 6C 7C 8C 94 00 00 00 00 A5 00 00 00 00 00 00 00 00");
    // 300 in every field is cut to each width.
    PakOutputStream out;
    for (int tag = 1; tag <= 11; ++tag) out.writeInt(300, tag);
    made->fromData(*out.data());
    EXPECT_TRUE(made->pak_b());
    EXPECT_EQ(made->pak_c(), 44);
    EXPECT_EQ(made->pak_C(), 44);
    EXPECT_EQ(made->pak_s(), 300);
    EXPECT_EQ(made->pak_q(), 300);
    EXPECT_EQ(made->pak_f(), 300);
    EXPECT_EQ(made->pak_number().number, PakValue(300));
    EXPECT_EQ(made->pak_notEncoded(), 77);
}

class Base : public PakObjectV2 {
    PAK_OBJECT_V2(Base, nullptr)
    PAK_FIELD(int32_t, pakv2_p_0_r_iBase, iBase, 1)
};
class Derived : public Base {
    PAK_OBJECT(Derived, Base, "WX.Derived")
    PAK_FIELD(int32_t, pakv2_p_1_r_iDerived, iDerived, 2)
};
class Bare : public Base {
    PAK_OBJECT(Bare, Base, nullptr)
};
class MissingPart : public PakObjectV2 {
    PAK_OBJECT_V2(MissingPart, nullptr)
    PAK_FIELD(std::shared_ptr<Base>, pakv2_p_0_r_part, part)
};
class SameTag : public PakObjectV2 {
    PAK_OBJECT_V2(SameTag, nullptr)
    PAK_FIELD(int32_t, pakv2_p_0_r_first, first, 1)
    PAK_FIELD(int32_t, pakv2_p_0_r_second, second, 2)
};

class Linked : public PakObjectV2 {
    PAK_OBJECT_V2(Linked, nullptr)
    PAK_FIELD(std::shared_ptr<PakObject>, pakv2_p_0_o_next, next)
};

TEST(PakObjectV2, DeclarationsAreTakenAtTheirWord) {
    EXPECT_EQ(hexOf(Derived().toData()), "10 02");
    EXPECT_EQ(hexOf(Bare().toData()), "");
    EXPECT_EQ(hexOf(SameTag().toData()), "00 02");
    EXPECT_EQ(outcomeOf([] { (void)MissingPart().toData(); }), "0");
    EXPECT_EQ(Derived().pakType(), "WX.Derived");
    EXPECT_EQ(Base().pakType(), std::nullopt);
    EXPECT_TRUE(Derived::pakClass().isSubclassOf(Base::pakClass()));
    EXPECT_EQ(PakClass::named("WeatherStation"), &WeatherStation::pakClass());
    EXPECT_EQ(outcomeOf([] { (void)PakObject().toData(); }), "raised: 需要由子类重写此方法！");
}

static_assert(pakTagFits("pakv2_p_255_o_n") && !pakTagFits("pakv2_p_256_o_n"));
static_assert(!pakTagFits("pakv2_p__o_n") && !pakTagFits("pakv2_p_x_o_n") && pakTagFits("other"));
static_assert(pakNameFits("pakv2_p_0_r_a_b__b0x9i_VOx", "a_b"));
static_assert(!pakNameFits("pakv2_p_0_n", "n") && !pakNameFits("pakv2_p_0__n", "n"));
static_assert(!pakNameFits("pakv2_p_0_r_n", "m"));
static_assert(pakContentsFit("pakv2_p_0_r_n", 0) && !pakContentsFit("pakv2_p_0_r_n", 'V'));
static_assert(pakContentsFit("pakv2_p_0_r_n__b0x9i_M09ONSStringVONSData", 'M'));
static_assert(!pakContentsFit("pakv2_p_0_r_n__b0x9i_M09ONSString", 'M'));
static_assert(!pakContentsFit("pakv2_p_0_r_n__b0x9i_ONSString", 'V'));
static_assert(!pakContentsFit("pakv2_p_0_r_n__b0x9i_VONSString", 'M'));

namespace inland {
class Reading : public PakObjectV2 {
    PAK_OBJECT_V2(Reading, nullptr)
    PAK_FIELD(std::string, pakv2_p_0_r_sPlace, sPlace)
};
class Log : public PakObjectV2 {
    PAK_OBJECT_V2(Log, nullptr)
    PAK_FIELD(PakArray, pakv2_p_0_r_list__b0x9i_VOReading, list)
};
}  // namespace inland
namespace offshore {
class Reading : public PakObjectV2 {
    PAK_OBJECT_V2(Reading, nullptr)
    PAK_FIELD(int64_t, pakv2_p_0_r_lDepth, lDepth)
};
class Log : public PakObjectV2 {
    PAK_OBJECT_V2(Log, nullptr)
    PAK_FIELD(PakArray, pakv2_p_0_r_list__b0x9i_VOReading, list)
};
}  // namespace offshore

// They had one description, and the fields of one were written as those of the other.
TEST(PakObjectV2, ClassesOfOneNameAreToldApart) {
    EXPECT_EQ(hexOf(inland::Reading().toData()), "06 00");
    EXPECT_EQ(hexOf(offshore::Reading().toData()), "0C");
    const PakData text = bytesOf("09 00 01 0A 06 01 61 0B"),
                  number = bytesOf("09 00 01 0A 00 07 0B");
    EXPECT_EQ(pakObjectFromData<inland::Log>(text)->toData(), text);
    EXPECT_EQ(pakObjectFromData<offshore::Log>(number)->toData(), number);
    EXPECT_EQ(outcomeOf([] { PakPair::pairFromExtStr("VOReading"); }),
              "a class name in a storage name is not unique");
}

TEST(PakObjectV2, AFailureNamesClassAndField) {
    const PakFailuresRaise peer;
    try {
        WeatherStation().fromData(bytesOf("0C 7A 16 00 0B"));
        FAIL();
    } catch (const PakInconsistencyException& failure) {
        EXPECT_STREQ(failure.what(),
                     "required == NO at WeatherStation.pakv2_p_7_o_stLatest, "
                     "WeatherReading.pakv2_p_0_r_iTime");
    }
}

TEST(PakObjectV2, TheReferenceInstanceStandsForNotSet) {
    Linked linked;
    linked.setPak_next(HandWritten::object());
    EXPECT_EQ(hexOf(linked.toData()), "0A 00 FF 0B");
    linked.setPak_next(linked.pakRefObject());
    EXPECT_EQ(hexOf(linked.toData()), "");
}

TEST(PakPair, ReadsExtensionStrings) {
    const auto nested = PakPair::pairFromExtStr("M09ONSStringM09ONSStringONSData");
    EXPECT_EQ(nested->key.asClass(), &PakClass::stringClass());
    EXPECT_EQ(nested->value.asPair()->key.asClass(), &PakClass::stringClass());
    EXPECT_EQ(nested->value.asPair()->value.asClass(), &PakClass::dataClass());
    EXPECT_EQ(nested->description(), "<NSString, PakPair>");
    const auto list = PakPair::pairFromExtStr("VVOWeatherReading");
    EXPECT_FALSE(list->key);
    EXPECT_EQ(list->value.asPair()->value.asClass(), &WeatherReading::pakClass());
    EXPECT_EQ(PakPair::pairFromExtStr("VONoSuchClass")->description(), "<(null), (null)>");

    const std::string longest = "VO" + std::string(125, 'x');
    struct {
        std::string text;
        const char* outcome;
    } const rows[] = {
        {longest, "done"},
        {longest + "x", "[str length] < 128"},
        {"ONSString", "[pair isKindOfClass:[PakPair class]]"},
        {"", "0"},
        {"X", "0"},
        {"V", "0"},
        {"M", "0"},
        {"M0", "0"},
        {"M9xONSString", "0"},
        {"M09ONS", "0"},
        {"M09ONSString", "0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(outcomeOf([&] { PakPair::pairFromExtStr(row.text); }), row.outcome) << row.text;
}

TEST(PakPropertyInfo, KnowsWhatTheStorageNameSays) {
    const auto& properties = WeatherStation::pakClass().pakPropsDescription();
    const PakPropertyInfo& list = properties.at(21);
    EXPECT_EQ(list.description(),
              "{\n    tag      : 21\n    required : 0\n    name     : pak_vReadings_All\n"
              "    type     : @\"NSArray\"\n    ext      : <(null), WeatherReading>\n}\n");
    EXPECT_TRUE(properties.at(0).flag);
    EXPECT_EQ(properties.at(0).compareWithTag(list), -1);
    EXPECT_EQ(list.compareWithTag(list), 0);
    EXPECT_EQ(list.compareWithTag(properties.at(0)), 1);
    EXPECT_EQ(&properties, &WeatherStation().pakPropsDescription());
}

TEST(PakObject, DescribesItsFields) {
    auto made = reading(3, 0.5);
    EXPECT_EQ(made->description(),
              "\r{\r    pakv2_p_0_r_iTime: 3\r    pakv2_p_1_o_dDegrees: 0.5\r}\r");
    auto outer = WeatherStation::object();
    outer->setPak_stLatest(made);
    EXPECT_THAT(outer->description(),
                testing::HasSubstr("    pakv2_p_7_o_stLatest: \r    {\r        pakv2_p_0_r_iTime: "
                                   "3\r        pakv2_p_1_o_dDegrees: 0.5\r    }\r\r"));
}

TEST(PakObject, IsArchivedAsItsBytes) {
    struct Coder : PakCoder {
        PakData kept;
        void encodeDataObject(const PakData& data) override { kept = data; }
        PakData decodeDataObject() override { return kept; }
    } coder;
    reading(3, 0.5)->encodeWithCoder(coder);
    WeatherReading back;
    back.initWithCoder(coder);
    EXPECT_EQ(back.toData(), reading(3, 0.5)->toData());
}

struct WXWindHelper : PakEnumHelper<WXWindHelper> {
    static constexpr std::string_view className = "WXWindHelper";
    static std::optional<std::string> etos(int64_t value) {
        return value == 1 ? "WXWind_West" : value == 2 ? "WXWind" : "";
    }
    static int64_t stoe(std::string_view name) { return name == "WXWind_West" ? 1 : -1; }
};
struct WXNoneHelper : PakEnumHelper<WXNoneHelper> {
    static constexpr std::string_view className = "WXNoneHelper";
};

TEST(PakEnumHelper, ShortensAndLengthensNames) {
    EXPECT_EQ(WXWindHelper::eto_s(1), "West");
    EXPECT_EQ(WXWindHelper::eto_s(2), std::nullopt);
    EXPECT_EQ(WXWindHelper::eto_s(3), std::nullopt);
    EXPECT_EQ(WXWindHelper::_stoe("West"), 1);
    EXPECT_EQ(WXWindHelper::_stoe("East"), -1);
    EXPECT_EQ(WXNoneHelper::eto_s(1), std::nullopt);
    EXPECT_EQ(WXNoneHelper::_stoe("West"), INT64_MIN);
}

}  // namespace
}  // namespace vorla::test
