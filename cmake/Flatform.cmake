# Shared build settings for every Flatform target.

add_library(flatform_options INTERFACE)
target_compile_options(flatform_options INTERFACE -Wall -Wextra -Wpedantic -Wno-unused-parameter)
if(FLATFORM_WERROR)
  target_compile_options(flatform_options INTERFACE -Werror)
endif()
if(FLATFORM_SANITIZE)
  target_compile_options(flatform_options INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer)
  target_link_options(flatform_options INTERFACE -fsanitize=address,undefined)
endif()
if(FLATFORM_FUZZ)
  # The libraries get coverage and sanitizer instrumentation; the fuzz targets add the driver.
  target_compile_options(flatform_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
  target_link_options(flatform_options INTERFACE -fsanitize=address,undefined)
endif()
target_compile_definitions(flatform_options INTERFACE QT_NO_KEYWORDS)

# Record text is code-page bytes: a text meets a QString only through an explicit conversion, never
# through Qt's implicit UTF-8 one. Libraries and programs are built so; tests compare with literals.
add_library(flatform_text_rules INTERFACE)
target_compile_definitions(flatform_text_rules INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY)

# flatform_library(<name> SOURCES ... [PUBLIC_DEPS ...] [PRIVATE_DEPS ...])
# One static library per subsystem; headers are included as <subsystem/Header.h>.
function(flatform_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
  add_library(ff_${name} STATIC ${ARG_SOURCES})
  target_include_directories(ff_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(ff_${name} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE flatform_options flatform_text_rules ${ARG_PRIVATE_DEPS})
endfunction()

# flatform_test(<name> SOURCES ... LIBS ... [QT])
# One executable per test file, registered with CTest. GoogleTest unless QT is given (QtTest).
function(flatform_test name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  if(ARG_QT)
    target_link_libraries(${name} PRIVATE flatform_options ${ARG_LIBS} Qt6::Test)
  else()
    target_link_libraries(${name} PRIVATE flatform_options ${ARG_LIBS} GTest::gtest GTest::gtest_main)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=en_US.UTF-8;LANG=en_US.UTF-8;TZ=UTC;FLATFORM_SOURCE_DIR=${PROJECT_SOURCE_DIR};FLATFORM_BINARY_DIR=${PROJECT_BINARY_DIR}"
    TIMEOUT 300)
endfunction()
