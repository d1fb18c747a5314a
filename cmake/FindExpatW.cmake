# Finds the 16-bit build of expat (library expatw): target ExpatW::ExpatW.
find_path(ExpatW_INCLUDE_DIR expat.h)
find_library(ExpatW_LIBRARY expatw)
if(NOT ExpatW_INCLUDE_DIR OR NOT ExpatW_LIBRARY)
  message(FATAL_ERROR "RkXmlLib16 needs expat's 16-bit build (library expatw and expat.h; on Debian the package "
                      "libexpat1-dev). Install it or run scripts/setup.sh.")
endif()

include(CheckCXXSourceRuns)
set(CMAKE_REQUIRED_INCLUDES ${ExpatW_INCLUDE_DIR})
set(CMAKE_REQUIRED_LIBRARIES ${ExpatW_LIBRARY})
check_cxx_source_runs("
#define XML_UNICODE
#include <expat.h>
int main() {
  const XML_Feature* feature = XML_GetFeatureList();
  for (; feature->feature != XML_FEATURE_END; ++feature)
    if (feature->feature == XML_FEATURE_SIZEOF_XML_CHAR) return feature->value == 2 && sizeof(XML_Char) == 2 ? 0 : 1;
  return 1;
}" ExpatW_IS_16_BIT)
unset(CMAKE_REQUIRED_INCLUDES)
unset(CMAKE_REQUIRED_LIBRARIES)
if(NOT ExpatW_IS_16_BIT)
  message(FATAL_ERROR "The expat library ${ExpatW_LIBRARY} is not the 16-bit build: its XML_Char is not 2 bytes wide. "
                      "RkXmlLib16 needs expatw as Debian's package libexpat1-dev installs it.")
endif()

if(NOT TARGET ExpatW::ExpatW)
  add_library(ExpatW::ExpatW UNKNOWN IMPORTED)
  set_target_properties(ExpatW::ExpatW PROPERTIES
    IMPORTED_LOCATION ${ExpatW_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${ExpatW_INCLUDE_DIR}
    INTERFACE_COMPILE_DEFINITIONS XML_UNICODE)
endif()
set(ExpatW_FOUND TRUE)
mark_as_advanced(ExpatW_INCLUDE_DIR ExpatW_LIBRARY)
