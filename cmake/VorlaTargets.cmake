# The one place that knows how a folder becomes a target: language level, warnings, sanitizers,
# visibility and precompiled headers are the same everywhere.

option(VORLA_WERROR "Treat warnings as errors (continuous integration does)" OFF)
set(VORLA_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined")

function(vorla_configure_target target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -fno-omit-frame-pointer)
  if(VORLA_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(VORLA_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${VORLA_SANITIZE} -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${VORLA_SANITIZE})
    # GCC warns that the fences inside the asynchronous I/O library are not followed.
    if(VORLA_SANITIZE MATCHES thread AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_compile_options(${target} PRIVATE -Wno-tsan)
    endif()
  endif()
endfunction()

# vorla_add_library(name SOURCES ... DEPENDS ... [QT] [SERVICE])
# A static library for one folder. Its DEPENDS are the folders (and outside libraries) below it;
# linking is what grants the right to include. QT marks a folder that may include Qt headers,
# SERVICE one that goes into the services library: the capture library calls into it, so its names
# are visible, and cmake/services.map says which of them are public.
function(vorla_add_library name)
  cmake_parse_arguments(ARG "QT;SERVICE" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  vorla_configure_target(${name})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE_DEPENDS})
  if(ARG_SERVICE)
    set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET default)
    set_property(GLOBAL APPEND PROPERTY VORLA_SERVICES ${name})
  endif()
  if(ARG_QT)
    target_link_libraries(${name} PUBLIC Qt6::Widgets)
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII)
    if(TARGET vorla_qt_pch)
      target_precompile_headers(${name} REUSE_FROM vorla_qt_pch)
    endif()
  endif()
endfunction()

# The directory of the modules, next to the libraries.
set(VORLA_MODULES vorla-${PROJECT_VERSION_MAJOR})

# vorla_add_module(name SOURCES ... DEPENDS ... [QT])
# A shared object for what is rarely used, loaded at need (platform/base/Module.h). It uses headers
# of ours only, so that nothing of the libraries is in the process twice.
function(vorla_add_module name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPENDS" ${ARGN})
  set(target vorla_module_${name})
  add_library(${target} MODULE ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/cmake/module.cpp)
  vorla_configure_target(${target})
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name}
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${VORLA_MODULES})
  target_compile_definitions(${target} PRIVATE VORLA_VERSION="${PROJECT_VERSION}")
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${target} PRIVATE ${ARG_DEPENDS})
  # A module may need nothing of the C library itself; packages want it named all the same.
  target_link_options(${target} PRIVATE -Wl,-z,now -Wl,--as-needed
    LINKER:--push-state,--no-as-needed,-lc,--pop-state)
  if(ARG_QT)
    target_link_libraries(${target} PRIVATE Qt6::Gui)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII)
  endif()
  install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${VORLA_MODULES})
endfunction()

# vorla_add_program(name SOURCES ... DEPENDS ... [QT])
function(vorla_add_program name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  vorla_configure_target(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS})
  if(ARG_QT)
    target_link_libraries(${name} PRIVATE Qt6::Widgets)
    target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII)
  endif()
endfunction()

# vorla_add_test(name SOURCES ... DEPENDS ... [QT] [DISPLAY])
# A GoogleTest program run as one CTest entry. DISPLAY runs it on a private X server with a window
# manager (tests/support/with-display). A program that needs a main of its own just defines it.
function(vorla_add_test name)
  cmake_parse_arguments(ARG "QT;DISPLAY" "TIMEOUT" "SOURCES;DEPENDS" ${ARGN})
  set(qt "")
  if(ARG_QT)
    set(qt QT)
  endif()
  vorla_add_program(${name} SOURCES ${ARG_SOURCES} DEPENDS ${ARG_DEPENDS} GTest::gmock
    GTest::gmock_main ${qt})
  if(ARG_DISPLAY)
    add_test(NAME ${name}
      COMMAND ${PROJECT_SOURCE_DIR}/tests/support/with-display $<TARGET_FILE:${name}>)
  else()
    add_test(NAME ${name} COMMAND ${name})
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
    ENVIRONMENT "XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/test-home/${name}/config;XDG_DATA_HOME=${PROJECT_BINARY_DIR}/test-home/${name}/data;QT_QPA_PLATFORM=$<IF:$<BOOL:${ARG_DISPLAY}>,xcb,offscreen>;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0;TSAN_OPTIONS=die_after_fork=0:suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp;UBSAN_OPTIONS=print_stacktrace=1")
endfunction()
