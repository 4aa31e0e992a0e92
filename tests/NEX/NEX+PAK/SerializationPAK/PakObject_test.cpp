#include "NEX/NEX+PAK/SerializationPAK/PakEnumHelper.h"
#include "tests/NEX/NEX+PAK/SerializationPAK/Buoy.h"

namespace vorla::test {
namespace {

/// A field of each kind that a buoy has not.
class Harbour : public PakObjectV2 {
    PAK_OBJECT_V2(Harbour, "SEA.Harbour")
    PAK_FIELD(bool, pakv2_p_1_o_b, b)
    PAK_FIELD(uint8_t, pakv2_p_3_o_C, C)
    PAK_FIELD(uint16_t, pakv2_p_5_o_S, S)
    PAK_FIELD(uint32_t, pakv2_p_6_o_I, I)
    PAK_FIELD(std::shared_ptr<DeclaredBuoy>, pakv2_p_7_o_stBuoy, stBuoy)
    PAK_FIELD(std::optional<std::string>, pakv2_p_8_o_sName_Old, sName_Old)
    PAK_FIELD(PakNumber, pakv2_p_11_o_number, number)
    PAK_FIELD(std::optional<PakDictionary>, pakv2_p_30_o_mLimits__b0x9i_M09ONSStringONSNumber,
              mLimits)
    PAK_FIELD(int32_t, notEncoded, notEncoded, 77)
};

TEST(PakObjectV2, PresentFieldsGoOutInTheOrderOfTheirTags) {
    Harbour harbour;
    EXPECT_EQ(hexOf(harbour.toData()), "1C 3C 5C 6C");
    harbour.setPak_sName_Old("x");
    harbour.setPak_number({2.0F});
    harbour.setPak_mLimits(PakDictionary{{"a", 1}});
    EXPECT_EQ(hexOf(harbour.toData()),
              "1C 3C 5C 6C 86 01 78 B4 40 00 00 00 F8 1E 00 01 06 01 61 10 01");
    EXPECT_EQ(pakObjectFromData<Harbour>(harbour.toData())->toData(), harbour.toData());
    EXPECT_EQ(pakObjectFromData<Harbour>({}), nullptr);
}

TEST(PakObjectV2, NumbersAreCutToTheirWidthAndAbsentFieldsKept) {
    Harbour harbour;
    harbour.setPak_sName_Old("kept");
    harbour.fromData(bytesOf("11 01 2C 31 01 2C 51 01 2C 63 00 00 00 01 00 00 00 05"));
    EXPECT_TRUE(harbour.pak_b());
    EXPECT_EQ(harbour.pak_C(), 44);
    EXPECT_EQ(harbour.pak_S(), 300);
    EXPECT_EQ(harbour.pak_I(), 5U);
    // An unknown field in the middle hides those behind it.
    harbour.fromData(bytesOf("1C 20 01 86 01 78"));
    EXPECT_EQ(harbour.pak_sName_Old(), "kept");
    EXPECT_EQ(harbour.pak_notEncoded(), 77);
}

class Base : public PakObjectV2 {
    PAK_OBJECT_V2(Base, nullptr)
    PAK_FIELD(int32_t, pakv2_p_0_r_iBase, iBase, 1)
};
class Derived : public Base {
    PAK_OBJECT(Derived, Base, "SEA.Derived")
    PAK_FIELD(int32_t, pakv2_p_1_r_iFirst, iFirst, 1)
    PAK_FIELD(int32_t, pakv2_p_1_r_iSecond, iSecond, 2)
};
class MissingPart : public PakObjectV2 {
    PAK_OBJECT_V2(MissingPart, nullptr)
    PAK_FIELD(std::shared_ptr<Base>, pakv2_p_0_r_part, part)
};
class Linked : public PakObjectV2 {
    PAK_OBJECT_V2(Linked, nullptr)
    PAK_FIELD(std::shared_ptr<PakObject>, pakv2_p_0_o_next, next)
};

TEST(PakObjectV2, DeclarationsAreTakenAtTheirWord) {
    EXPECT_EQ(hexOf(Derived().toData()), "10 02");
    EXPECT_EQ(outcomeOf([] { (void)MissingPart().toData(); }), "0");
    EXPECT_EQ(Derived().pakType(), "SEA.Derived");
    EXPECT_TRUE(Derived::pakClass().isSubclassOf(Base::pakClass()));
    EXPECT_EQ(outcomeOf([] { (void)PakObject().toData(); }), "raised: 需要由子类重写此方法！");
    // The reference instance stands for "not set".
    Linked linked;
    linked.setPak_next(HandWritten::object());
    EXPECT_EQ(hexOf(linked.toData()), "0A 00 FF 0B");
    linked.setPak_next(linked.pakRefObject());
    EXPECT_EQ(hexOf(linked.toData()), "");
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
class Records : public PakObjectV2 {
    PAK_OBJECT_V2(Records, nullptr)
    PAK_FIELD(PakArray, pakv2_p_0_r_list__b0x9i_VOReading, list)
};
}  // namespace inland
namespace offshore {
class Reading : public PakObjectV2 {
    PAK_OBJECT_V2(Reading, nullptr)
    PAK_FIELD(int64_t, pakv2_p_0_r_lDepth, lDepth)
};
class Records : public PakObjectV2 {
    PAK_OBJECT_V2(Records, nullptr)
    PAK_FIELD(PakArray, pakv2_p_0_r_list__b0x9i_VOReading, list)
};
}  // namespace offshore

// They had one description, and the fields of one were written as those of the other.
TEST(PakObjectV2, ClassesOfOneNameAreToldApart) {
    EXPECT_EQ(hexOf(inland::Reading().toData()), "06 00");
    EXPECT_EQ(hexOf(offshore::Reading().toData()), "0C");
    const PakData text = bytesOf("09 00 01 0A 06 01 61 0B"),
                  number = bytesOf("09 00 01 0A 00 07 0B");
    EXPECT_EQ(pakObjectFromData<inland::Records>(text)->toData(), text);
    EXPECT_EQ(pakObjectFromData<offshore::Records>(number)->toData(), number);
    EXPECT_EQ(outcomeOf([] { PakPair::pairFromExtStr("VOReading"); }),
              "a class name in a storage name is not unique");
}

TEST(PakObjectV2, AFailureNamesClassAndField) {
    const PakFailuresRaise peer;
    try {
        Harbour().fromData(bytesOf("7A 36 00 0B"));
        FAIL();
    } catch (const PakInconsistencyException& failure) {
        EXPECT_STREQ(failure.what(),
                     "required == NO at Harbour.pakv2_p_7_o_stBuoy, "
                     "DeclaredBuoy.pakv2_p_2_r_iNumber");
    }
}

TEST(PakPair, ReadsExtensionStrings) {
    const auto nested = PakPair::pairFromExtStr("M09ONSStringM09ONSStringONSData");
    EXPECT_EQ(nested->key.asClass(), &PakClass::stringClass());
    EXPECT_EQ(nested->value.asPair()->key.asClass(), &PakClass::stringClass());
    EXPECT_EQ(nested->value.asPair()->value.asClass(), &PakClass::dataClass());
    EXPECT_EQ(nested->description(), "<NSString, PakPair>");
    const auto list = PakPair::pairFromExtStr("VVODeclaredBuoy");
    EXPECT_FALSE(list->key);
    EXPECT_EQ(list->value.asPair()->value.asClass(), &DeclaredBuoy::pakClass());
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

TEST(PakObject, DescribesItselfAndItsFields) {
    const PakPropertyInfo& limits = Harbour::pakClass().pakPropsDescription().at(30);
    EXPECT_EQ(limits.description(),
              "{\n    tag      : 30\n    required : 0\n    name     : pak_mLimits\n"
              "    type     : @\"NSDictionary\"\n    ext      : <NSString, NSNumber>\n}\n");
    MissingPart outer;
    outer.setPak_part(Base::object());
    EXPECT_EQ(outer.description(),
              "\r{\r    pakv2_p_0_r_part: \r    {\r        pakv2_p_0_r_iBase: 1\r    }\r\r}\r");
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
