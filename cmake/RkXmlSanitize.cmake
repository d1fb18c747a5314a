# Applies RKXML_SANITIZE to everything that is built, and what the fuzz targets need to see where they have been.
if(RKXML_BUILD_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(RKXML_SANITIZE)
  add_compile_options(-fsanitize=${RKXML_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${RKXML_SANITIZE})
endif()
