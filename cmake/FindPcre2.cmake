# Finds PCRE2 with 8-bit code units: target Pcre2::Pcre2.
find_path(Pcre2_INCLUDE_DIR pcre2.h)
find_library(Pcre2_LIBRARY pcre2-8)
if(NOT Pcre2_INCLUDE_DIR OR NOT Pcre2_LIBRARY)
  message(FATAL_ERROR "RkXmlLib16 needs PCRE2 (library pcre2-8 and pcre2.h; on Debian the package libpcre2-dev). "
                      "Install it or run scripts/setup.sh.")
endif()
if(NOT TARGET Pcre2::Pcre2)
  add_library(Pcre2::Pcre2 UNKNOWN IMPORTED)
  set_target_properties(Pcre2::Pcre2 PROPERTIES
    IMPORTED_LOCATION ${Pcre2_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${Pcre2_INCLUDE_DIR}
    INTERFACE_COMPILE_DEFINITIONS PCRE2_CODE_UNIT_WIDTH=8)
endif()
set(Pcre2_FOUND TRUE)
mark_as_advanced(Pcre2_INCLUDE_DIR Pcre2_LIBRARY)
