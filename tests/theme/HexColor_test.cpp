#include "theme/HexColor.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned white = 0xffffffffU;
constexpr unsigned none = 0;  ///< stands for "no colour" in the tables

unsigned argb(const QColor& color) {
    return color.isValid() ? color.rgba() : none;
}

TEST(HexColor, WithAlphaInTheString) {
    const std::pair<const char*, unsigned> cases[] = {
        {"", none},
        {"#fff", white},
        {"1a2B3c", 0xff1a2b3cU},
        {"#8000", 0x88000000U},
        {"80FF0001", 0x80ff0001U},
        {"#00123456", 0x00123456U},
        {"#12345", white},  // a length that is none of them
        {"#1234567890", white},
        {"#", white},
        {"#gg00zz", 0xff000000U},  // digits that are none
        {"#1g2g3g", 0xff010203U},  // a number ends at the first that is none
        {"#-1+2 3", 0xff000000U},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(argb(hx_colorWithHexString(QString::fromLatin1(text))), expected) << text;
}

TEST(HexColor, WithAlphaBesideTheString) {
    const std::tuple<const char*, double, unsigned> cases[] = {
        {"", 0.5, none},
        {"#fff", 0.5, 0x80ffffffU},
        {"102030", 0.0, 0x00102030U},
        {"102030", 7.0, 0xff102030U},
        {"#8000", 0.5, white},
        {"#80000000", 0.5, white},
    };
    for (const auto& [text, alpha, expected] : cases)
        EXPECT_EQ(argb(hx_colorWithHexString(QString::fromLatin1(text), alpha)), expected) << text;
}

TEST(HexColor, FromACString) {
    const std::pair<const char*, unsigned> cases[] = {
        {nullptr, none},
        {"", none},
        {"0x", none},
        {"0x102030", 0xff102030U},
        {"0X102030", 0x00102030U},
        {"#abc", 0xffaabbccU},
        {"\xff\xfe", white},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(argb(__HexColor(text)), expected) << (text ? text : "null");
}

}  // namespace
