// Carries the precompiled header; see the top CMakeLists.txt.
