# Applies RKXML_SANITIZE to everything that is built.
if(RKXML_SANITIZE)
  add_compile_options(-fsanitize=${RKXML_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${RKXML_SANITIZE})
endif()
