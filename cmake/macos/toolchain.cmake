# Builds the macOS bundle on Linux, for both processors at once, against the declarations of platform/macos/declarations.
# tools/macos-sdk has made build/macos-sdk first. On a Mac the system's own tools and headers take the place of this file.
get_filename_component(TAVELLE_ROOT "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
set(TAVELLE_SDK ${TAVELLE_ROOT}/build/macos-sdk)
if(NOT EXISTS ${TAVELLE_SDK}/complete)
  message(FATAL_ERROR "${TAVELLE_SDK} is not complete: run tools/macos-sdk")
endif()

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0.0)  # of macOS 13
set(CMAKE_SYSTEM_PROCESSOR arm64)

set(CMAKE_OSX_SYSROOT ${TAVELLE_SDK}/sysroot CACHE PATH "")

find_program(TAVELLE_CLANG clang-19 REQUIRED)
find_program(TAVELLE_CLANGXX clang++-19 REQUIRED)
set(CMAKE_C_COMPILER ${TAVELLE_CLANG})
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER ${TAVELLE_CLANGXX})
endforeach()

set(TAVELLE_LLVM /usr/lib/llvm-14/bin)
foreach(tool AR INSTALL_NAME_TOOL NM OBJDUMP OTOOL RANLIB STRIP)
  string(TOLOWER llvm-${tool} program)
  string(REPLACE _ - program ${program})
  set(CMAKE_${tool} ${TAVELLE_LLVM}/${program} CACHE FILEPATH "")
endforeach()

foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET arm64-apple-macos13.0)  # -arch overrides the processor
  set(CMAKE_${language}_FLAGS_INIT -B${TAVELLE_SDK}/bin)        # where the compiler finds its `lipo`
  # Archives of both processors.
  set(CMAKE_${language}_ARCHIVE_CREATE "${TAVELLE_LLVM}/llvm-libtool-darwin -static -o <TARGET> <OBJECTS>")
  set(CMAKE_${language}_ARCHIVE_FINISH "")
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -Wl,-adhoc_codesign -lclang_rt_osx")

set(CMAKE_FIND_ROOT_PATH ${TAVELLE_SDK}/sysroot)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# There is no codesign here.
set(TAVELLE_CODESIGN /usr/bin/python3 -B ${TAVELLE_ROOT}/tools/macos/sign.py)
