# Files that name installed paths (the manual pages, the example
# configurations) are kept in the repository as they read once installed in
# /usr, so that they read right where they stand. They are fitted to the
# prefix when they are installed, not when the build is configured: a Debian
# package installs into /usr whatever prefix the build folder was made with
# (cpack installs with CMAKE_INSTALL_PREFIX=/usr), while
# `cmake --install build [--prefix DIR]` installs under the build's or the
# given prefix, and each gets files naming its own folders.
#
#   zentaro_install_fitted(FILE path DESTINATION dir COMPONENT name [GZIP])
function(zentaro_install_fitted)
  cmake_parse_arguments(arg "GZIP" "FILE;DESTINATION;COMPONENT" "" ${ARGN})
  get_filename_component(name ${arg_FILE} NAME)
  set(work ${CMAKE_CURRENT_BINARY_DIR}/fitted/${name})
  install(CODE "
    set(fit_source [[${CMAKE_CURRENT_SOURCE_DIR}/${arg_FILE}]])
    set(fit_work [[${work}]])
    set(fit_destination [[${arg_DESTINATION}]])
    set(fit_datarootdir [[${CMAKE_INSTALL_DATAROOTDIR}]])
    set(fit_version [[${PROJECT_VERSION}]])
    set(fit_gzip ${arg_GZIP})
    include([[${PROJECT_SOURCE_DIR}/packaging/fit-installed-file.cmake]])
  " COMPONENT ${arg_COMPONENT})
endfunction()
