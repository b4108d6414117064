# Objective-C++ for src/platform/mac. On macOS it is the platform; elsewhere the layer is compiled and
# tested with clang against GNUstep, where both are installed, and is linked into nothing else.
if(APPLE)
  enable_language(OBJCXX)
  set(CMAKE_OBJCXX_STANDARD ${CMAKE_CXX_STANDARD})
  set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
  set(CMAKE_OBJCXX_EXTENSIONS OFF)
  return()
endif()

option(ZANTRIO_MAC_LAYER "Compile and test src/platform/mac against GNUstep, where it is installed" ON)
if(NOT ZANTRIO_MAC_LAYER OR NOT BUILD_TESTING)
  set(ZANTRIO_MAC_LAYER_FOUND FALSE)
  return()
endif()

# Its code has one thread, the main one.
if(ZANTRIO_SANITIZE MATCHES "thread")
  message(STATUS "The macOS layer is left out: it has nothing for the thread sanitizer")
  set(ZANTRIO_MAC_LAYER_FOUND FALSE)
  return()
endif()

find_program(ZANTRIO_OBJCXX_COMPILER clang++)
find_path(GNUSTEP_INCLUDE_DIR AppKit/AppKit.h PATH_SUFFIXES GNUstep)
find_library(GNUSTEP_BASE_LIBRARY gnustep-base)
find_library(GNUSTEP_GUI_LIBRARY gnustep-gui)
find_library(GNUSTEP_ADDRESSES_LIBRARY Addresses)
find_library(BLOCKS_LIBRARY BlocksRuntime)
# The runtime comes with GCC, in the folders of its version.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=include
  OUTPUT_VARIABLE gcc_include_dir OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libobjc.so
  OUTPUT_VARIABLE gcc_objc_library OUTPUT_STRIP_TRAILING_WHITESPACE)
find_path(OBJC_INCLUDE_DIR objc/runtime.h PATHS ${gcc_include_dir} NO_DEFAULT_PATH)
get_filename_component(gcc_library_dir ${gcc_objc_library} DIRECTORY)
find_library(OBJC_LIBRARY objc PATHS ${gcc_library_dir} NO_DEFAULT_PATH)

set(ZANTRIO_MAC_LAYER_FOUND TRUE)
foreach(part ZANTRIO_OBJCXX_COMPILER GNUSTEP_INCLUDE_DIR GNUSTEP_BASE_LIBRARY GNUSTEP_GUI_LIBRARY
             GNUSTEP_ADDRESSES_LIBRARY BLOCKS_LIBRARY OBJC_INCLUDE_DIR OBJC_LIBRARY)
  if(NOT ${part})
    set(ZANTRIO_MAC_LAYER_FOUND FALSE)
    message(STATUS "The macOS layer is left out: ${part} was not found (script/bootstrap installs it)")
  endif()
endforeach()
if(NOT ZANTRIO_MAC_LAYER_FOUND)
  return()
endif()

# The rest is compiled by GCC, and a program cannot have the sanitizers of two compilers: all that the
# layer's tests are made of is compiled and linked by clang.
if(ZANTRIO_SANITIZE)
  execute_process(COMMAND ${ZANTRIO_OBJCXX_COMPILER} -fsanitize=${ZANTRIO_SANITIZE} -x c++ -
    -o ${CMAKE_BINARY_DIR}/sanitizer_check INPUT_FILE ${CMAKE_CURRENT_LIST_DIR}/sanitizers/check.cc
    RESULT_VARIABLE sanitizer_result OUTPUT_QUIET ERROR_QUIET)
  if(sanitizer_result)
    message(STATUS "The macOS layer is left out: clang's sanitizers were not found (script/bootstrap installs them)")
    set(ZANTRIO_MAC_LAYER_FOUND FALSE)
    return()
  endif()
endif()

if(NOT CMAKE_OBJCXX_COMPILER)
  set(CMAKE_OBJCXX_COMPILER ${ZANTRIO_OBJCXX_COMPILER} CACHE FILEPATH "Compiler of src/platform/mac")
endif()
enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD ${CMAKE_CXX_STANDARD})
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
if(CCACHE_PROGRAM)
  set(CMAKE_OBJCXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# Of the compiler's folder only the runtime's headers: the others are for that compiler alone.
set(objc_headers ${CMAKE_BINARY_DIR}/objc_runtime)
file(MAKE_DIRECTORY ${objc_headers})
file(CREATE_LINK ${OBJC_INCLUDE_DIR}/objc ${objc_headers}/objc SYMBOLIC)

# Foundation, AppKit and AddressBook as GNUstep has them, on GCC's runtime.
add_library(zantrio_gnustep INTERFACE)
target_compile_options(zantrio_gnustep INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:
  -fobjc-runtime=gcc -fobjc-exceptions -fconstant-string-class=NSConstantString -fblocks>)
target_compile_definitions(zantrio_gnustep INTERFACE
  GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_GUI_LIBRARY=1 GNU_RUNTIME=1 _NATIVE_OBJC_EXCEPTIONS)
target_include_directories(zantrio_gnustep SYSTEM INTERFACE ${GNUSTEP_INCLUDE_DIR} ${objc_headers})
# The blocks' library first, as Foundation's own copies of its functions do less.
target_link_libraries(zantrio_gnustep INTERFACE
  ${BLOCKS_LIBRARY} ${GNUSTEP_ADDRESSES_LIBRARY} ${GNUSTEP_GUI_LIBRARY} ${GNUSTEP_BASE_LIBRARY}
  ${OBJC_LIBRARY})
