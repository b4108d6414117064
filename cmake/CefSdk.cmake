# The target cef::cef from an unpacked binary distribution of the framework in CEF_ROOT: its shared
# library and its C++ wrapper, which is compiled here. Not tried yet: no package registry carries
# the distribution.
#
# On macOS the programs load the library themselves when they start, so that only the wrapper is
# linked; CEF_FRAMEWORK is the folder that goes into the bundle, and cef::sandbox what the helper
# application enters its sandbox with.
if(APPLE)
  set(CEF_FRAMEWORK "${CEF_ROOT}/Release/Chromium Embedded Framework.framework")
  find_library(CEF_SANDBOX NAMES cef_sandbox.a PATHS ${CEF_ROOT}/Release NO_DEFAULT_PATH REQUIRED)
  file(GLOB_RECURSE CEF_WRAPPER_SOURCES CONFIGURE_DEPENDS
    ${CEF_ROOT}/libcef_dll/*.cc ${CEF_ROOT}/libcef_dll/*.mm)
  add_library(cef_wrapper STATIC ${CEF_WRAPPER_SOURCES})
  target_include_directories(cef_wrapper SYSTEM PUBLIC ${CEF_ROOT})
  target_compile_definitions(cef_wrapper PRIVATE WRAPPING_CEF_SHARED)
  target_compile_options(cef_wrapper PRIVATE -w)
  add_library(cef::cef ALIAS cef_wrapper)

  add_library(cef_sandbox INTERFACE)
  target_link_libraries(cef_sandbox INTERFACE ${CEF_SANDBOX} sandbox)
  add_library(cef::sandbox ALIAS cef_sandbox)
  return()
endif()

find_library(CEF_LIBRARY NAMES cef PATHS ${CEF_ROOT}/Release NO_DEFAULT_PATH REQUIRED)

file(GLOB_RECURSE CEF_WRAPPER_SOURCES CONFIGURE_DEPENDS ${CEF_ROOT}/libcef_dll/*.cc)
add_library(cef_wrapper STATIC ${CEF_WRAPPER_SOURCES})
target_include_directories(cef_wrapper SYSTEM PUBLIC ${CEF_ROOT})
target_compile_definitions(cef_wrapper PRIVATE WRAPPING_CEF_SHARED)
target_compile_options(cef_wrapper PRIVATE -w)

add_library(cef INTERFACE)
target_link_libraries(cef INTERFACE cef_wrapper ${CEF_LIBRARY})
add_library(cef::cef ALIAS cef)
