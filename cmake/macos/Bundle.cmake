# Tavelle.app, from the target `tavelle`: for both processors, macOS 13 or later, signed for this machine.
set_target_properties(tavelle PROPERTIES
  OUTPUT_NAME Tavelle
  MACOSX_BUNDLE ON
  MACOSX_BUNDLE_INFO_PLIST ${PROJECT_SOURCE_DIR}/resources/Info.plist.in)

set(resources
  ${PROJECT_SOURCE_DIR}/resources/macos/AboutIcon.png
  ${PROJECT_SOURCE_DIR}/resources/macos/AboutIcon@2x.png
  ${PROJECT_SOURCE_DIR}/resources/macos/AppIcon.icns
  ${PROJECT_SOURCE_DIR}/resources/macos/MenuBarIcon.png
  ${PROJECT_SOURCE_DIR}/resources/macos/MenuBarIcon@2x.png)
target_sources(tavelle PRIVATE ${resources})
set_source_files_properties(${resources} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)

# Nothing looks a symbol of the program up.
target_link_options(tavelle PRIVATE -Wl,-dead_strip -Wl,-no_exported_symbols $<$<CONFIG:MinSizeRel>:-Wl,-x>)

# Ad hoc: the bundle runs where it was built. packaging/macos/sign signs it for others.
if(NOT TAVELLE_CODESIGN)
  set(TAVELLE_CODESIGN codesign --force --sign -)
endif()
add_custom_command(TARGET tavelle POST_BUILD
  COMMAND ${TAVELLE_CODESIGN} "$<TARGET_BUNDLE_DIR:tavelle>"
  COMMENT "Signing the bundle")
install(TARGETS tavelle BUNDLE DESTINATION .)
