#include "NEX/NEX+PAK/SerializationPAK/PakPair.h"

#include "NEX/NEX+PAK/SerializationPAK/PakClass.h"
#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"

using vorla::pakAssert;

std::string PakDescription::className() const {
    if (pair_) return "PakPair";
    return class_ ? class_->name() : "(null)";
}

std::shared_ptr<const PakPair> PakPair::pairWithValue(PakDescription value, PakDescription forKey) {
    auto pair = std::make_shared<PakPair>();
    pair->key = std::move(forKey);
    pair->value = std::move(value);
    return pair;
}

PakDescription PakPair::analyzeExtStr(std::string_view text, const PakClass* from) {
    const auto digit = [&](size_t at) { return at < text.size() ? text[at] - '0' : -1; };
    const std::string_view rest = text.substr(text.empty() ? 0 : 1);
    switch (text.empty() ? '\0' : text[0]) {
        case 'O': {
            const PakClass* expected = PakClass::named(rest, from);
            return expected ? PakDescription(*expected) : PakDescription();
        }
        case 'V':
            return pairWithValue(analyzeExtStr(rest, from), {});
        case 'M': {
            const int tens = digit(1), ones = digit(2);
            pakAssert(tens >= 0 && tens <= 9 && ones >= 0 && ones <= 9, "0");
            const auto length = static_cast<size_t>(tens * 10 + ones);
            pakAssert(text.size() >= 3 + length, "0");
            return pairWithValue(analyzeExtStr(text.substr(3 + length), from),
                                 analyzeExtStr(text.substr(3, length), from));
        }
        default:
            vorla::pakFail("0");
    }
}

std::shared_ptr<const PakPair> PakPair::pairFromExtStr(std::string_view text,
                                                       const PakClass* from) {
    pakAssert(text.size() < 128, "[str length] < 128");
    const PakDescription description = analyzeExtStr(text, from);
    pakAssert(description.asPair() != nullptr, "[pair isKindOfClass:[PakPair class]]");
    return description.asPair();
}

std::string PakPair::description() const {
    return "<" + key.className() + ", " + value.className() + ">";
}
