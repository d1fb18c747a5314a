# Debian packages, made by `cpack -G DEB` in the build directory: the library, its development files and the program.
set(CPACK_PACKAGE_NAME rkxmllib16)
set(CPACK_PACKAGE_VENDOR "RkXmlLib16 developers")
set(CPACK_PACKAGE_CONTACT "RkXmlLib16 developers <rkxmllib16@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
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
  "XML data binding run-time (shared library)\nReads objects of generated classes from XML text, JSON and Fast Infoset documents and writes them back,\nchecking the facets and occurrence limits of their XML Schema.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME librkxmllib16-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "librkxmllib16-16 (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_DEV_DESCRIPTION
  "XML data binding run-time (development files)\nHeaders, the CMake package RkXmlLib16 and RkXmlLib16.pc.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME rkxml)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION text)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
  "librkxmllib16-16 (>= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/RkXmlLib16)
set(CPACK_DEBIAN_TOOL_DESCRIPTION
  "convert and inspect XML documents\nConverts documents between plain and compressed, pretty and compact forms and shows what one holds.")

include(CPack)
