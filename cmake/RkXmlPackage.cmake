# Debian packages, made by `cpack -G DEB` in the build directory: the library, its development files and the program.
set(CPACK_PACKAGE_NAME rkxmllib16)
set(CPACK_PACKAGE_VENDOR "RkXmlLib16 developers")
set(CPACK_PACKAGE_CONTACT "RkXmlLib16 developers <rkxmllib16@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # would come before the descriptions of the packages
set(CPACK_PACKAGE_INSTALL_DIRECTORY rkxmllib16)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime dev tool)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME librkxmllib16-16)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
  "XML data binding run-time (shared library)\nReads objects of generated classes from XML text, JSON and Fast Infoset documents\nand writes them back, checking the facets and occurrence limits of their XML\nSchema.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME librkxmllib16-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "librkxmllib16-16 (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS rkxml)
set(CPACK_DEBIAN_DEV_DESCRIPTION
  "XML data binding run-time (development files)\nHeaders, the CMake package RkXmlLib16, RkXmlLib16.pc, the documentation and\nexamples with their schemas.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME rkxml)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION text)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
  "librkxmllib16-16 (>= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/RkXmlLib16)
set(CPACK_DEBIAN_TOOL_DESCRIPTION
  "convert and inspect XML, JSON and Fast Infoset documents\nConverts documents between the three forms, plain or compressed, pretty or\ncompact, shows what a document holds, checks documents by their schema and\nmakes C++ classes of schemas.")

# What every package has to tell about itself.
function(rkxml_compress input output)
  file(ARCHIVE_CREATE OUTPUT ${output} PATHS ${input} FORMAT raw COMPRESSION GZip COMPRESSION_LEVEL 9 MTIME "2026-11-21")
endfunction()
set(doc_dir ${PROJECT_BINARY_DIR}/debian)
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in ${doc_dir}/changelog @ONLY)
rkxml_compress(${doc_dir}/changelog ${doc_dir}/changelog.Debian.gz)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
rkxml_compress(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${doc_dir}/changelog.gz)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/debian/copyright ${doc_dir}/changelog.gz ${doc_dir}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME} COMPONENT ${component})
endforeach()

include(CPack)
