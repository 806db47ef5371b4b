# Every target of ours links one of the two option targets below: product code is built without exceptions
# and RTTI, tests with them (GoogleTest needs both).
add_library(tw_options INTERFACE)
target_include_directories(tw_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(tw_options INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
if(TW_SANITIZE)
  target_compile_options(tw_options INTERFACE -fsanitize=${TW_SANITIZE} -fno-omit-frame-pointer
                                              -fno-sanitize-recover=all)
  target_link_options(tw_options INTERFACE -fsanitize=${TW_SANITIZE})
  if(TW_SANITIZE MATCHES undefined)
    # The check of virtual tables asks for type information, which product code is built without.
    target_compile_options(tw_options INTERFACE -fno-sanitize=vptr)
  endif()
endif()
if(TW_FUZZ)
  target_compile_options(tw_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(WIN32)
  target_compile_definitions(tw_options INTERFACE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX
                                                  _WIN32_WINNT=0x0601)
  target_link_options(tw_options INTERFACE -static)
endif()

add_library(tw_product_options INTERFACE)
target_link_libraries(tw_product_options INTERFACE tw_options)
target_compile_options(tw_product_options INTERFACE -fno-exceptions -fno-rtti)

# tw_library(NAME SOURCES… LINK libraries…): one product library; arrows between libraries point one way.
function(tw_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE tw_product_options)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
endfunction()

# The program runs on the virtual side of the platform: clock, devices, faults and registry of the tests.
function(tw_virtual_platform name)
  set_target_properties(${name} PROPERTIES TW_VIRTUAL_PLATFORM ON)
endfunction()

# tw_test(NAME SOURCES… LINK libraries… [THREADED]): one GoogleTest program, its cases listed one by one.
# THREADED ones run real threads on the real clock and are built for the race detector too. LARGE ones look at
# millions of values. LONG ones have a form that takes long (TW_FULL). SHIPPED ones run on the platform layer that ships, all others on the virtual one.
function(tw_test name)
  cmake_parse_arguments(arg "THREADED;LARGE;SHIPPED;LONG" "" "SOURCES;LINK" ${ARGN})
  if(TW_THREADED_TESTS_ONLY AND NOT arg_THREADED)
    return()
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LINK} tw_options tw_gtest)
  if(arg_SHIPPED)
    set(side shipped.)  # the virtual side has cases of the same names
  else()
    tw_virtual_platform(${name})
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  set(limit_s 300)
  if(arg_LONG)
    set(limit_s 7200)
  endif()
  if(TW_SANITIZE AND NOT arg_LARGE)
    # Instrumented test code takes twice as long to optimise as to run as it is.
    target_compile_options(${name} PRIVATE -O0)
  endif()
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${TW_TEST_PREFIX}${name} COMMAND ${name})
  else()
    gtest_discover_tests(${name} TEST_PREFIX ${TW_TEST_PREFIX}${side} DISCOVERY_TIMEOUT 60
                         PROPERTIES TIMEOUT ${limit_s})
  endif()
endfunction()
