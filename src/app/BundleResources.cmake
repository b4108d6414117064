# The files of the bundle that are not compiled.
set(packaging ${CMAKE_SOURCE_DIR}/packaging)
configure_file(${packaging}/Info.plist.in ${ZANTRIO_BUNDLE_DIR}/Info.plist @ONLY)
install(FILES ${ZANTRIO_BUNDLE_DIR}/Info.plist DESTINATION Zantrio)

file(GLOB resources CONFIGURE_DEPENDS RELATIVE ${packaging}/Resources ${packaging}/Resources/*)
set(copies)
foreach(resource ${resources})
  set(copy ${ZANTRIO_BUNDLE_DIR}/Resources/${resource})
  add_custom_command(OUTPUT ${copy}
    COMMAND ${CMAKE_COMMAND} -E copy ${packaging}/Resources/${resource} ${copy}
    DEPENDS ${packaging}/Resources/${resource})
  list(APPEND copies ${copy})
endforeach()
add_custom_target(zantrio_resources ALL DEPENDS ${copies})
add_dependencies(zantrio zantrio_resources)
install(FILES ${copies} DESTINATION Zantrio/Resources)
