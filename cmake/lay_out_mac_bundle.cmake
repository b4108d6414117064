# Lays the application's bundle for macOS out of what was built:
#   cmake -DBUNDLE=.../Zantrio.app -DVERSION=1.2.3 -DMINIMUM_SYSTEM_VERSION=10.15
#         -DEXECUTABLE=file -DHELPER=file -DTRANSFERS_LIBRARY=file -DICON=file
#         -DFRAMEWORK="folder/Chromium Embedded Framework.framework"
#         -DCRASH_SDK=folder/HockeySDK.framework
#         -P cmake/lay_out_mac_bundle.cmake
# Replaces a bundle that is there. Nothing is changed when an input is missing.
cmake_minimum_required(VERSION 3.21)
set(packaging ${CMAKE_CURRENT_LIST_DIR}/../packaging)

foreach(value BUNDLE VERSION MINIMUM_SYSTEM_VERSION)
  if(NOT ${value})
    message(FATAL_ERROR "The bundle cannot be laid out: ${value} is not given")
  endif()
endforeach()
foreach(input EXECUTABLE HELPER TRANSFERS_LIBRARY ICON FRAMEWORK CRASH_SDK)
  if(NOT ${input} OR NOT EXISTS "${${input}}")
    message(FATAL_ERROR "The bundle cannot be laid out: ${input} \"${${input}}\" does not exist")
  endif()
endforeach()

set(contents "${BUNDLE}/Contents")
set(frameworks "${contents}/Frameworks")

# Copies a file under another name, or a folder with the links in it as they are.
function(copy_as from to)
  get_filename_component(folder "${to}" DIRECTORY)
  get_filename_component(name "${to}" NAME)
  get_filename_component(old_name "${from}" NAME)
  file(COPY "${from}" DESTINATION "${folder}" USE_SOURCE_PERMISSIONS)
  if(NOT name STREQUAL old_name)
    file(RENAME "${folder}/${old_name}" "${to}")
  endif()
endfunction()

# The framework starts the variants for processes that need other rights when the bundle is signed.
function(add_helper variant identifier_end)
  set(HELPER_NAME "Zantrio Helper${variant}")
  set(HELPER_IDENTIFIER "com.zantrio.client.helper${identifier_end}")
  set(helper "${frameworks}/${HELPER_NAME}.app/Contents")
  configure_file(${packaging}/mac/Helper-Info.plist.in "${helper}/Info.plist" @ONLY)
  copy_as("${HELPER}" "${helper}/MacOS/${HELPER_NAME}")
endfunction()

file(REMOVE_RECURSE "${BUNDLE}")
configure_file(${packaging}/mac/Info.plist.in "${contents}/Info.plist" @ONLY)
file(WRITE "${contents}/PkgInfo" "APPL????")
copy_as("${EXECUTABLE}" "${contents}/MacOS/Zantrio")
file(COPY ${packaging}/Resources/ DESTINATION "${contents}/Resources")
copy_as("${ICON}" "${contents}/Resources/Zantrio.icns")
copy_as("${FRAMEWORK}" "${frameworks}/Chromium Embedded Framework.framework")
copy_as("${CRASH_SDK}" "${frameworks}/HockeySDK.framework")
copy_as("${TRANSFERS_LIBRARY}" "${frameworks}/libzt-transfers.dylib")
add_helper("" "")
add_helper(" (Alerts)" ".alerts")
add_helper(" (GPU)" ".gpu")
add_helper(" (Plugin)" ".plugin")
add_helper(" (Renderer)" ".renderer")
