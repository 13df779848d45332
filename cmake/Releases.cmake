# What CHANGELOG.md says of the releases: its headings "## VERSION (DATE)", the newest first. The newest must be the version
# that CMakeLists.txt names.
#
# Sets ZARNET_RELEASES (as AppStream lists them), ZARNET_RELEASE_DATE ("2026-11-23") and ZARNET_RELEASE_TIME (the same day
# as a Debian changelog writes it).

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/CHANGELOG.md")
file(STRINGS "${PROJECT_SOURCE_DIR}/CHANGELOG.md" headings REGEX "^## ")
set(ZARNET_RELEASES)
foreach(heading IN LISTS headings)
  if(NOT heading MATCHES "^## ([0-9.]+) \\(([0-9]+-[0-9]+-[0-9]+)\\)$")
    message(FATAL_ERROR "CHANGELOG.md: “${heading}” is not “## VERSION (YYYY-MM-DD)”.")
  endif()
  if(NOT ZARNET_RELEASES)
    if(NOT CMAKE_MATCH_1 VERSION_EQUAL PROJECT_VERSION)
      message(FATAL_ERROR "CHANGELOG.md begins with ${CMAKE_MATCH_1}, CMakeLists.txt names ${PROJECT_VERSION}.")
    endif()
    set(ZARNET_RELEASE_DATE "${CMAKE_MATCH_2}")
  endif()
  string(APPEND ZARNET_RELEASES "\n    <release version=\"${CMAKE_MATCH_1}\" date=\"${CMAKE_MATCH_2}\"/>")
endforeach()
execute_process(COMMAND date --utc --rfc-email --date "${ZARNET_RELEASE_DATE} 12:00"
  OUTPUT_VARIABLE ZARNET_RELEASE_TIME OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
