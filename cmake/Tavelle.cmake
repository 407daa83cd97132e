# What every target of the project shares.

option(TAVELLE_TESTS "Build the tests" ON)
option(TAVELLE_BENCH "Build the programs of ./bench" OFF)
option(TAVELLE_FUZZ "Build the fuzzers, by clang" OFF)
set(TAVELLE_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them: address,undefined or thread")

if(APPLE)
  enable_language(OBJCXX)
  set(CMAKE_OBJCXX_STANDARD 20)
  set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
  set(CMAKE_OBJCXX_EXTENSIONS OFF)
endif()

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
  set(CMAKE_OBJCXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(tavelle_options INTERFACE)
target_compile_options(tavelle_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wimplicit-fallthrough -Werror
  $<$<NOT:$<COMPILE_LANGUAGE:C>>:-Wnon-virtual-dtor$<SEMICOLON>-Woverloaded-virtual>
  # Symmetric transfer between coroutines needs the tail call in debug builds too, or a long loop of awaits grows the stack.
  -foptimize-sibling-calls)
if(APPLE)
  target_compile_options(tavelle_options INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc> -Wunguarded-availability)
endif()
target_include_directories(tavelle_options INTERFACE ${PROJECT_SOURCE_DIR})
# The program waits nearly all its life: what counts of its code is how much of it is in memory.
target_compile_options(tavelle_options INTERFACE $<$<CONFIG:MinSizeRel>:-ffunction-sections -fdata-sections>)
if(NOT APPLE)  # where the bundle says the same in its linker's words
  target_link_options(tavelle_options INTERFACE $<$<CONFIG:MinSizeRel>:LINKER:--gc-sections>)
endif()
if(TAVELLE_SANITIZE)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # With sanitizers it warns of what is initialized, as its manual says; every build without them has the warning.
    target_compile_options(tavelle_options INTERFACE -Wno-maybe-uninitialized)
  endif()
  target_compile_options(tavelle_options INTERFACE -fsanitize=${TAVELLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tavelle_options INTERFACE -fsanitize=${TAVELLE_SANITIZE})
endif()

# tavelle_layer(NAME SOURCES ... SEES ...): a layer's library, and the layers and libraries that it may include.
function(tavelle_layer name)
  cmake_parse_arguments(LAYER "" "" "SOURCES;SEES" ${ARGN})
  if(LAYER_SOURCES)
    add_library(tavelle_${name} STATIC ${LAYER_SOURCES})
    target_link_libraries(tavelle_${name} PUBLIC ${LAYER_SEES} PRIVATE tavelle_options)
    target_include_directories(tavelle_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  else()
    add_library(tavelle_${name} INTERFACE)
    target_link_libraries(tavelle_${name} INTERFACE ${LAYER_SEES})
    target_include_directories(tavelle_${name} INTERFACE ${PROJECT_SOURCE_DIR})
  endif()
endfunction()
