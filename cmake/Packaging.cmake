# The system package. The program files lie read-only under /opt/cartulon; the
# launcher gives each user a program folder of their own to run from, since
# Cartulon keeps settings and catalogues beside its program file.
if(CARTULON_SYSTEM_PACKAGE)
  string(TIMESTAMP CARTULON_BUILD_STAMP "%Y%m%d%H%M%S" UTC)
  set(STAMP_FILE ${CMAKE_BINARY_DIR}/package-stamp)
  file(WRITE ${STAMP_FILE} "${PROJECT_VERSION} ${CARTULON_BUILD_STAMP}\n")
  install(FILES ${STAMP_FILE} DESTINATION ${CARTULON_INSTALL_DIR} RENAME .package-stamp)
  install(PROGRAMS ${CMAKE_SOURCE_DIR}/scripts/cartulon-launcher.sh DESTINATION usr/bin RENAME cartulon)
  install(FILES ${CMAKE_SOURCE_DIR}/data/cartulon.desktop DESTINATION usr/share/applications)
  install(FILES ${CMAKE_SOURCE_DIR}/data/icons/cartulon.svg DESTINATION usr/share/icons/hicolor/scalable/apps)
  foreach(size 16 24 32 48 64 128 256)
    install(FILES ${CMAKE_SOURCE_DIR}/data/icons/cartulon-${size}.png
            DESTINATION usr/share/icons/hicolor/${size}x${size}/apps RENAME cartulon.png)
  endforeach()

  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGE_NAME cartulon)
  set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
  set(CPACK_PACKAGING_INSTALL_PREFIX /)
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Catalogue of backup discs: browse and search discs that aren't at hand")
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Cartulon developers")
  set(CPACK_DEBIAN_PACKAGE_SECTION utils)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "xdg-utils")
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  include(CPack)
endif()
