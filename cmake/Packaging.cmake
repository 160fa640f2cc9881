# The system package. The program files lie read-only under /usr/lib/cartulon;
# one launcher, /usr/bin/cartulon with /usr/bin/cartulon-cli linked to it,
# gives each user a program folder of their own to run from, since Cartulon
# keeps settings and catalogues beside its program file.
#
# The man pages and the bash completion are printed by cartulon-cli itself
# from its command tables (hidden options --man-page and --bash-completion),
# so that they say what `cartulon-cli help` says.
if(CARTULON_SYSTEM_PACKAGE)
  string(TIMESTAMP CARTULON_BUILD_STAMP "%Y%m%d%H%M%S" UTC)
  set(STAMP_FILE ${CMAKE_BINARY_DIR}/package-stamp)
  file(WRITE ${STAMP_FILE} "${PROJECT_VERSION} ${CARTULON_BUILD_STAMP}\n")
  install(FILES ${STAMP_FILE} DESTINATION ${CARTULON_INSTALL_DIR} RENAME .package-stamp)
  install(PROGRAMS ${CMAKE_SOURCE_DIR}/scripts/cartulon-launcher.sh DESTINATION usr/bin RENAME cartulon)
  file(CREATE_LINK cartulon ${CMAKE_BINARY_DIR}/cartulon-cli-link SYMBOLIC)
  install(FILES ${CMAKE_BINARY_DIR}/cartulon-cli-link DESTINATION usr/bin RENAME cartulon-cli)
  install(FILES ${CMAKE_SOURCE_DIR}/data/cartulon.desktop DESTINATION usr/share/applications)
  install(FILES ${CMAKE_SOURCE_DIR}/data/icons/cartulon.svg DESTINATION usr/share/icons/hicolor/scalable/apps)
  foreach(size 16 24 32 48 64 128 256)
    install(FILES ${CMAKE_SOURCE_DIR}/data/icons/cartulon-${size}.png
            DESTINATION usr/share/icons/hicolor/${size}x${size}/apps RENAME cartulon.png)
  endforeach()

  # Generated: man pages (English, and German under de/), the completion,
  # the changelog; gzip -n so that the package doesn't change with the clock.
  set(GEN ${CMAKE_BINARY_DIR}/package-files)
  set(generated)
  foreach(page cartulon cartulon-cli)
    foreach(lang en de)
      set(out ${GEN}/man/${lang}/${page}.1.gz)
      add_custom_command(OUTPUT ${out}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${GEN}/man/${lang}
        COMMAND sh -c "\"$1\" --man-page ${page} ${lang} | gzip -9n > \"$2\"" sh
                $<TARGET_FILE:cartulon-cli> ${out}
        DEPENDS cartulon-cli VERBATIM)
      list(APPEND generated ${out})
    endforeach()
    install(FILES ${GEN}/man/en/${page}.1.gz DESTINATION usr/share/man/man1)
    install(FILES ${GEN}/man/de/${page}.1.gz DESTINATION usr/share/man/de/man1)
  endforeach()
  add_custom_command(OUTPUT ${GEN}/cartulon-cli.bash
    COMMAND sh -c "\"$1\" --bash-completion > \"$2\"" sh $<TARGET_FILE:cartulon-cli> ${GEN}/cartulon-cli.bash
    DEPENDS cartulon-cli VERBATIM)
  add_custom_command(OUTPUT ${GEN}/changelog.gz
    COMMAND sh -c "gzip -9n < \"$1\" > \"$2\"" sh ${CMAKE_SOURCE_DIR}/packaging/changelog ${GEN}/changelog.gz
    DEPENDS ${CMAKE_SOURCE_DIR}/packaging/changelog VERBATIM)
  list(APPEND generated ${GEN}/cartulon-cli.bash ${GEN}/changelog.gz)
  add_custom_target(package_files ALL DEPENDS ${generated})
  install(FILES ${GEN}/cartulon-cli.bash DESTINATION usr/share/bash-completion/completions RENAME cartulon-cli)
  install(FILES ${CMAKE_SOURCE_DIR}/packaging/copyright ${GEN}/changelog.gz DESTINATION usr/share/doc/cartulon)
  install(FILES ${CMAKE_SOURCE_DIR}/packaging/cartulon.lintian-overrides
          DESTINATION usr/share/lintian/overrides RENAME cartulon)

  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGE_NAME cartulon)
  set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
  set(CPACK_PACKAGING_INSTALL_PREFIX /)
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "catalogue of backup discs to browse and search offline")
  # CPack puts the summary above this as the synopsis line.
  set(CPACK_PACKAGE_DESCRIPTION
      "Cartulon reads a CD, a DVD or any mounted volume once and keeps a plain text
catalogue of it. The discs, their folders and files can then be browsed,
described and searched by name, size, attributes, date and description
without the disc at hand. German and English; cartulon-cli does the same
from a terminal.")
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER
      "Cartulon developers <maintainers@users.noreply.c-seed-d99d4fea.example>")
  set(CPACK_DEBIAN_PACKAGE_SECTION utils)
  set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  # libarchive is loaded only when an ISO image is read (dlopen), so
  # dpkg-shlibdeps can't see it.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "xdg-utils, libarchive13")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_STRIP_FILES ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  include(CPack)
endif()
