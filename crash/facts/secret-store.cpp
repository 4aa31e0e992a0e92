// Asks the desktop's Secret Service on behalf of a host, which would rather not have the client
// library, its threads and its waits inside itself.
//   secret-store get|set|delete HOST SERVICE ACCOUNT
// The password is read from standard input. Prints "F" and the password for one that was found, "N"
// for none, "S" for stored or deleted; nothing at all when no service answers, when the keyring is
// locked (the user is never asked to open it) or when it takes too long.
#include <libsecret/secret.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace {

struct Release {
    void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Object = std::unique_ptr<T, Release>;
using Attributes = std::unique_ptr<GHashTable, decltype(&g_hash_table_unref)>;
using Value = std::unique_ptr<SecretValue, void (*)(SecretValue*)>;

const SecretSchema schema = {"org.vorla.crash",
                             SECRET_SCHEMA_NONE,
                             {{"host", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                             0,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr};

void unrefValue(SecretValue* value) {
    secret_value_unref(value);
}

/// Whether the service runs: nothing is started for us.
bool isRunning() {
    const Object<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus) return false;
    GVariant* const reply = g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "NameHasOwner", g_variant_new("(s)", "org.freedesktop.secrets"), G_VARIANT_TYPE("(b)"),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (!reply) return false;
    gboolean owned = FALSE;
    g_variant_get(reply, "(b)", &owned);
    g_variant_unref(reply);
    return owned != FALSE;
}

/// The item, or null; with its secret unless it is locked.
Object<SecretItem> find(SecretService* service, GHashTable* attributes, bool& failed) {
    GError* error = nullptr;
    GList* const items = secret_service_search_sync(service, &schema, attributes,
                                                    SECRET_SEARCH_LOAD_SECRETS, nullptr, &error);
    failed = error != nullptr;
    Object<SecretItem> first;
    if (items) first.reset(SECRET_ITEM(g_object_ref(items->data)));
    g_list_free_full(items, g_object_unref);
    return first;
}

std::string get(SecretService* service, GHashTable* attributes) {
    bool failed = false;
    const auto item = find(service, attributes, failed);
    if (!item) return failed ? "" : "N";
    const Value value(secret_item_get_secret(item.get()), &unrefValue);
    const char* const text = value ? secret_value_get_text(value.get()) : nullptr;
    return text ? std::string("F") + text : "";
}

std::string remove(SecretService* service, GHashTable* attributes) {
    bool failed = false;
    const auto item = find(service, attributes, failed);
    if (!item) return failed ? "" : "N";
    if (secret_item_get_locked(item.get())) return "";
    return secret_item_delete_sync(item.get(), nullptr, nullptr) ? "S" : "";
}

std::string set(SecretService* service, GHashTable* attributes, const std::string& host) {
    const Object<SecretCollection> keyring(secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, nullptr));
    if (!keyring || secret_collection_get_locked(keyring.get())) return "";
    std::string password;
    char piece[4096];
    while (const size_t count = std::fread(piece, 1, sizeof piece, stdin))
        password.append(piece, count);
    const Value value(
        secret_value_new(password.data(), static_cast<gssize>(password.size()), "text/plain"),
        &unrefValue);
    const Object<SecretItem> item(secret_item_create_sync(
        keyring.get(), &schema, attributes, ("Crash reports of " + host).c_str(), value.get(),
        SECRET_ITEM_CREATE_REPLACE, nullptr, nullptr));
    return item ? "S" : "";
}

}  // namespace

int main(int count, char** arguments) {
    // Whatever hangs on the bus: this is the end of it.
    ::alarm(2);
    if (count != 5 || !isRunning()) return 1;
    const Object<SecretService> service(
        secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr));
    if (!service) return 1;
    const std::string_view verb = arguments[1];
    const std::string host = arguments[2];
    const Attributes attributes(
        secret_attributes_build(&schema, "host", arguments[2], "service", arguments[3], "account",
                                arguments[4], nullptr),
        &g_hash_table_unref);
    std::string answer;
    if (verb == "get") answer = get(service.get(), attributes.get());
    if (verb == "set") answer = set(service.get(), attributes.get(), host);
    if (verb == "delete") answer = remove(service.get(), attributes.get());
    std::fwrite(answer.data(), 1, answer.size(), stdout);
    return answer.empty() ? 1 : 0;
}
