# Runs at install time (see installed-paths.cmake): copies fit_source to
# fit_destination under the prefix being installed to, with the folders of
# this project under /usr/share (zentaro/, doc/zentaro...) moved to that
# prefix's data folder and the version of a manual page's title line set to
# the project's; compressed when fit_gzip is set. Other /usr paths (fonts,
# the system's own files) are left as they are.
file(READ "${fit_source}" text)
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr" OR NOT fit_datarootdir STREQUAL "share")
  string(REGEX REPLACE "/usr/share/(zentaro|doc/zentaro)"
    "${CMAKE_INSTALL_PREFIX}/${fit_datarootdir}/\\1" text "${text}")
endif()
string(REGEX REPLACE "^(\\.TH [^\n]*\"zentaro )[^\"]*\"" "\\1${fit_version}\"" text "${text}")
# Installs into different places may run at once (a staged install beside a
# package build): each fits its files in a folder of its own.
get_filename_component(fit_folder "${fit_work}" DIRECTORY)
get_filename_component(fit_name "${fit_work}" NAME)
string(MD5 fit_place "$ENV{DESTDIR}|${CMAKE_INSTALL_PREFIX}")
set(fit_work "${fit_folder}/${fit_place}/${fit_name}")
file(MAKE_DIRECTORY "${fit_folder}/${fit_place}")
file(WRITE "${fit_work}" "${text}")
if(fit_gzip)
  # -n: no name or time stamp inside, so that packages come out the same
  execute_process(COMMAND gzip -9 -n -f "${fit_work}" COMMAND_ERROR_IS_FATAL ANY)
  string(APPEND fit_work ".gz")
endif()
file(INSTALL "${fit_work}" DESTINATION "${CMAKE_INSTALL_PREFIX}/${fit_destination}"
  PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
