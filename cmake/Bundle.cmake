# The relocatable folder that the build makes, the install step copies and packages hold.
set(ZANTRIO_BUNDLE_DIR ${CMAKE_BINARY_DIR}/Zantrio)

# Places an executable in the bundle's bin folder, where it finds the bundle's libraries. It has its
# final RUNPATH from the beginning: the one that CMake makes for the build has an empty element, which
# is the working folder.
function(zantrio_bundle_executable target)
  set_target_properties(${target} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${ZANTRIO_BUNDLE_DIR}/bin
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "$ORIGIN/../lib")
  install(TARGETS ${target} RUNTIME DESTINATION Zantrio/bin)
endfunction()

# Places a shared library in the bundle's lib folder.
function(zantrio_bundle_library target)
  set_target_properties(${target} PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON
    LIBRARY_OUTPUT_DIRECTORY ${ZANTRIO_BUNDLE_DIR}/lib)
  install(TARGETS ${target} LIBRARY DESTINATION Zantrio/lib)
endfunction()
