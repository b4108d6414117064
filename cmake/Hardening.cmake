# What makes flaws of the delivered programs harder to use. Included by the folders that they are made
# of; tests are compiled without it.
include(CheckCXXCompilerFlag)

add_compile_options(-fstack-protector-strong)
check_cxx_compiler_flag(-fcf-protection ZANTRIO_HAS_CF_PROTECTION)  # x86 only
if(ZANTRIO_HAS_CF_PROTECTION)
  add_compile_options(-fcf-protection)
endif()
# Checked calls need an optimised build; sanitizers check the same calls themselves.
if(NOT ZANTRIO_SANITIZE)
  add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
if(NOT APPLE)
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
