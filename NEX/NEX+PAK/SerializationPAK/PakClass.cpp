#include "NEX/NEX+PAK/SerializationPAK/PakClass.h"

#include <cstdlib>
#include <mutex>
#include <unordered_map>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakObject.h"
#include "NEX/NEX+PAK/SerializationPAK/PakStorageName.h"

using vorla::pakAssert;

namespace {

constinit PakClass plainClasses[] = {{"NSNumber", PakValue::Kind::Number},
                                     {"NSString", PakValue::Kind::String},
                                     {"NSData", PakValue::Kind::Data},
                                     {"NSArray", PakValue::Kind::Array},
                                     {"NSDictionary", PakValue::Kind::Dictionary}};

/// The head of the list of declared classes. Libraries add theirs while they are being loaded.
constinit std::atomic<PakClass*> declaredClasses{nullptr};

/// What is computed once for a class lives as long as the process: other threads may still pack
/// while it exits.
template <typename T>
T& immortal() {
    static T* const instance = std::make_unique<T>().release();
    return *instance;
}

struct SerializableLock : std::mutex {};
struct RefObjectLock : std::mutex {};

using ClassProperties = std::unordered_map<const PakClass*, std::unique_ptr<PakPropsDescription>>;

/// From class to what the storage names of its fields say. Not by name: two classes may have one.
ClassProperties* pakv2_class_props_descriptions = nullptr;

/// The pieces of a name between its underscores; one more than there are underscores.
std::vector<std::string_view> pieces(std::string_view name) {
    std::vector<std::string_view> result;
    for (size_t at = 0; (at = name.find('_')) != std::string_view::npos;) {
        result.push_back(name.substr(0, at));
        name.remove_prefix(at + 1);
    }
    result.push_back(name);
    return result;
}

PakPropertyInfo parsedStorageName(std::string_view storage, const PakClass& declaring) {
    PakPropertyInfo info = PakPropertyInfo::propertyInfo();
    if (const size_t marker = storage.find(vorla::kPakExtMarker);
        marker != std::string_view::npos) {
        info.ext = PakPair::pairFromExtStr(storage.substr(marker + vorla::kPakExtMarker.size()),
                                           &declaring);
        storage = storage.substr(0, marker);
    }
    const auto strs = pieces(storage);
    pakAssert(strs.size() >= 5, "[strs count] >= 5");
    info.tag = std::strtoll(std::string(strs[2]).c_str(), nullptr, 10);
    info.flag = strs[3] == "r";
    info.name = "pak_" + std::string(strs[4]);
    for (size_t i = 5; i < strs.size(); ++i) info.name += "_" + std::string(strs[i]);
    return info;
}

}  // namespace

const PakClass& PakClass::numberClass() {
    return plainClasses[0];
}
const PakClass& PakClass::stringClass() {
    return plainClasses[1];
}
const PakClass& PakClass::dataClass() {
    return plainClasses[2];
}
const PakClass& PakClass::arrayClass() {
    return plainClasses[3];
}
const PakClass& PakClass::dictionaryClass() {
    return plainClasses[4];
}

PakClassEntry::PakClassEntry(PakClass& declared) {
    declared.nextClass_ = declaredClasses.load();
    while (!declaredClasses.compare_exchange_weak(declared.nextClass_, &declared)) continue;
}

const PakClass* PakClass::named(std::string_view name, const PakClass* from) {
    for (const PakClass& plain : plainClasses)
        if (plain.name_ == name) return &plain;
    std::vector<const PakClass*> found;
    for (const PakClass* each = declaredClasses.load(); each; each = each->nextClass_)
        if (each->name_ == name) found.push_back(each);
    if (found.size() > 1 && from)
        std::erase_if(found, [&](const PakClass* each) { return !each->isNeighbourOf(*from); });
    pakAssert(found.size() <= 1, "a class name in a storage name is not unique");
    return found.empty() ? nullptr : found.front();
}

bool PakClass::isNeighbourOf(const PakClass& other) const {
    const auto around = [](const PakClass& one) {
        const std::string_view scope = one.scope_;
        return scope.substr(0, scope.rfind(std::string(one.name_) + "]"));
    };
    return around(*this) == around(other);
}

bool PakClass::isSubclassOf(const PakClass& other) const {
    for (const PakClass* each = this; each; each = each->base_)
        if (each == &other) return true;
    return false;
}

PakObjectPtr PakClass::fromData(const PakData& data) const {
    if (data.empty()) return nullptr;
    PakObjectPtr instance = object();
    if (instance) instance->fromData(data);
    return instance;
}

std::optional<std::string> PakClass::pakType() const {
    return pakType_ ? std::optional<std::string>(pakType_) : std::nullopt;
}

std::map<std::string, std::string> PakClass::pakPropertiesWithEncodedTypes() const {
    std::map<std::string, std::string> types;
    forEachField([&](const vorla::PakField& field) {
        types.insert_or_assign(field.storageName(), field.encodedType());
    });
    return types;
}

const vorla::PakField* PakClass::following(const vorla::PakField& field) {
    return field.next();
}

const vorla::PakField* PakClass::fieldWithAccessor(std::string_view accessor) const {
    const vorla::PakField* field = firstField_;
    while (field && field->accessor() != accessor) field = field->next();
    return field;
}

PakPropsDescription PakClass::parsedProperties() const {
    PakPropsDescription properties;
    forEachField([&](const vorla::PakField& field) {
        const std::string_view storage = field.storageName();
        if (!storage.starts_with(vorla::kPakPrefix)) return;
        PakPropertyInfo info = parsedStorageName(storage, *this);
        info.type = field.encodedType();
        info.field = fieldWithAccessor(info.name);
        pakAssert(info.field != nullptr, "[self respondsToSelector:NSSelectorFromString(name)]");
        properties.insert(std::move(info));
    });
    return properties;
}

const PakPropsDescription& PakClass::makePropsDescription() const {
    const std::lock_guard lock(immortal<SerializableLock>());
    if (!pakv2_class_props_descriptions)
        pakv2_class_props_descriptions = &immortal<ClassProperties>();
    pakAssert(pakv2_class_props_descriptions != nullptr, "pakv2_class_props_descriptions != nil");
    auto& entry = (*pakv2_class_props_descriptions)[this];
    if (!entry) entry = std::make_unique<PakPropsDescription>(parsedProperties());
    properties_.store(entry.get(), std::memory_order_release);
    return *entry;
}

const PakObjectPtr& PakClass::makeRefObject() const {
    const std::lock_guard lock(immortal<RefObjectLock>());
    if (const auto* known = refObject_.load(std::memory_order_relaxed)) return *known;
    const auto* made = std::make_unique<PakObjectPtr>(object()).release();
    refObject_.store(made, std::memory_order_release);
    return *made;
}

namespace vorla {

PakField::PakField(PakClass& owner, const char* storageName, const char* accessor)
    : storageName_(storageName), accessor_(accessor) {
    PakField*& link = owner.lastField_ ? owner.lastField_->next_ : owner.firstField_;
    link = this;
    owner.lastField_ = this;
}

}  // namespace vorla
