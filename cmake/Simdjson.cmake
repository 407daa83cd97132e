# simdjson: the distribution's on Linux. The macOS bundle runs on two processors and brings its libraries with it, so there
# the library is built from its source, which tools/macos-sdk fetches.
if(APPLE)
  set(TAVELLE_SIMDJSON ${PROJECT_SOURCE_DIR}/build/macos-sdk/libraries/node_modules/@nozbe/simdjson/src)
  if(NOT EXISTS ${TAVELLE_SIMDJSON}/simdjson.cpp)
    message(FATAL_ERROR "simdjson's source is not there: run tools/macos-sdk")
  endif()
  add_library(simdjson STATIC ${TAVELLE_SIMDJSON}/simdjson.cpp)
  target_include_directories(simdjson SYSTEM PUBLIC ${TAVELLE_SIMDJSON})
  add_library(simdjson::simdjson ALIAS simdjson)
else()
  find_package(simdjson REQUIRED)
endif()
