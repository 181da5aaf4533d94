# Debian packages, built with `cpack -G DEB` in a build directory (amd64 from
# the native build, armhf from the ARM cross build):
#   zentrellibtest   the utility, its manual page and completion. It needs a
#                    libzentrel.so, named by the virtual package libzentrel.
#   zentrel-sim      the simulated libzentrel.so in a directory of its own and
#                    the zentrelLibTest-sim wrapper. It provides libzentrel so
#                    that both install together, but its library is found only
#                    through the wrapper, never by other programs.
set(ZENTREL_PACKAGE_UTILITY zentrellibtest)
set(ZENTREL_PACKAGE_SIM zentrel-sim)
set(ZENTREL_PACKAGE_MAINTAINER "zentrelLibTest developers <zentrellibtest@example.org>")

# What Debian wants in every package: the copyright file, a compressed
# change log, compressed manual pages.
set(ZENTREL_PKG_DIR ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${ZENTREL_PKG_DIR})
find_program(ZENTREL_GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${ZENTREL_PKG_DIR}/zentrelLibTest.1.gz ${ZENTREL_PKG_DIR}/changelog.gz
  COMMAND ${ZENTREL_GZIP} -9n -c ${ZENTREL_MAN_PAGE} > ${ZENTREL_PKG_DIR}/zentrelLibTest.1.gz
  COMMAND ${ZENTREL_GZIP} -9n -c ${CMAKE_SOURCE_DIR}/doc/changelog > ${ZENTREL_PKG_DIR}/changelog.gz
  DEPENDS ${ZENTREL_MAN_PAGE} ${CMAKE_SOURCE_DIR}/doc/changelog
  COMMENT "Compressing the manual page and the change log")
add_custom_target(package_files ALL DEPENDS ${ZENTREL_PKG_DIR}/zentrelLibTest.1.gz ${ZENTREL_PKG_DIR}/changelog.gz)
file(CREATE_LINK zentrelLibTest.1.gz ${ZENTREL_PKG_DIR}/zentrelLibTest-sim.1.gz SYMBOLIC)
file(CREATE_LINK zentrelLibTest.1.gz ${ZENTREL_PKG_DIR}/zentrelLibTest-record.1.gz SYMBOLIC)

install(FILES ${ZENTREL_PKG_DIR}/zentrelLibTest.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT utility)
install(FILES ${ZENTREL_PKG_DIR}/zentrelLibTest-sim.1.gz ${ZENTREL_PKG_DIR}/zentrelLibTest-record.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT simulator)
foreach(component utility simulator)
  if(component STREQUAL utility)
    set(name ${ZENTREL_PACKAGE_UTILITY})
  else()
    set(name ${ZENTREL_PACKAGE_SIM})
  endif()
  install(FILES ${CMAKE_SOURCE_DIR}/doc/copyright ${ZENTREL_PKG_DIR}/changelog.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zentrellibtest)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${ZENTREL_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL utility simulator)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://example.org/zentrellibtest")
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()

set(CPACK_DEBIAN_UTILITY_PACKAGE_NAME ${ZENTREL_PACKAGE_UTILITY})
set(CPACK_DEBIAN_UTILITY_PACKAGE_DEPENDS "libc6 (>= 2.34), libzentrel")
set(CPACK_COMPONENT_UTILITY_DESCRIPTION "test, debug and manage Corvane PCIe switches
zentrelLibTest tests, debugs and manages the Corvane family of PCIe
switches through the maker's management library libzentrel.so: one
command per start, or an interactive menu. Its output is meant to be read
by scripts, line by line.
.
The library is not part of this package: install the vendor's package, or
zentrel-sim to run against simulated switches.")

set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME ${ZENTREL_PACKAGE_SIM})
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_DEPENDS "${ZENTREL_PACKAGE_UTILITY} (= ${PROJECT_VERSION}), libc6 (>= 2.34), libstdc++6 (>= 12), libgcc-s1 (>= 3.5)")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_PROVIDES libzentrel)
set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION "simulated Corvane PCIe switches for zentrelLibTest
A simulated libzentrel.so that models a fleet of Corvane PCIe switches,
with scenarios, call traces and state kept between runs, and the
zentrelLibTest-sim wrapper that runs zentrelLibTest against it. Also the
recording library and its zentrelLibTest-record wrapper, which record a
session with the vendor's library for the simulator to replay.
.
The simulated library lives in a directory of its own and is used only
through the wrapper: it never replaces the vendor's library.")
include(CPack)
