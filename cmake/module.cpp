// What each module says of itself; the library uses those of its own version only.
extern "C" [[gnu::visibility("default")]] const char vorlaModuleVersion[] = VORLA_VERSION;
