# The desktop files, man pages and completion of a Linux install, and the Debian package
# (cpack -G DEB, run by ./kalvo.sh package).
set(KALVO_LINUX_DIR ${CMAKE_CURRENT_LIST_DIR})
set(KALVO_STAGE ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${KALVO_STAGE}/bin)

# bin/ holds links into the program folder: the programs find their data files beside their real
# path (the system resolves the link for applicationDirPath).
file(RELATIVE_PATH program_from_bin /${CMAKE_INSTALL_BINDIR} /${KALVO_PROGRAM_DIR})
foreach(program ${KALVO_PROGRAMS})
    file(CREATE_LINK ${program_from_bin}/${program} ${KALVO_STAGE}/bin/${program} SYMBOLIC)
    install(FILES ${KALVO_STAGE}/bin/${program} DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()

install(FILES ${KALVO_LINUX_DIR}/kalvo.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${KALVO_LINUX_DIR}/kalvo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
configure_file(${KALVO_LINUX_DIR}/io.github.kalvo.kalvo.metainfo.xml ${KALVO_STAGE}/io.github.kalvo.kalvo.metainfo.xml
               @ONLY)
install(FILES ${KALVO_STAGE}/io.github.kalvo.kalvo.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${KALVO_LINUX_DIR}/kalvo-cli.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME kalvo-cli)
install(FILES ${KALVO_LINUX_DIR}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kalvo)

# Man pages and the changelog, compressed as Debian wants them (gzip -n: the same bytes on every build).
find_program(KALVO_GZIP gzip)
if(KALVO_GZIP)
    set(pages)
    foreach(page kalvo.1 kalvo-cli.1 kalvo-sim.1 changelog)
        configure_file(${KALVO_LINUX_DIR}/${page} ${KALVO_STAGE}/${page} @ONLY)
        add_custom_command(OUTPUT ${KALVO_STAGE}/${page}.gz
                           COMMAND ${KALVO_GZIP} -9nf -k ${KALVO_STAGE}/${page}
                           DEPENDS ${KALVO_STAGE}/${page} VERBATIM)
        list(APPEND pages ${KALVO_STAGE}/${page}.gz)
    endforeach()
    list(POP_BACK pages changelog)
    add_custom_target(kalvo-manpages ALL DEPENDS ${pages} ${changelog})
    install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${changelog} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kalvo)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kalvo)
set(CPACK_PACKAGE_VENDOR "kalvo")
set(CPACK_PACKAGE_CONTACT "kalvo developers <kalvo@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "service utility for portable electrical-safety testers")
set(CPACK_PACKAGE_DESCRIPTION
    "kalvo talks to a Kalvomer electrical-safety tester over a serial line:\n\
configuration, limits, clock, calibration backups, firmware and package\n\
updates, test specifications, and the test records as reports, PDF and CSV,\n\
kept in a record archive (SQLite or PostgreSQL). kalvo-cli does every\n\
operation on the command line; kalvo-sim is a virtual tester on a pseudo-\n\
terminal.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What the libraries do not name (the platform plugins come with libqt6gui6): the archive's SQL drivers,
# the fonts of PDF reports and of the offscreen platform kalvo-cli prints with.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, libqt6sql6-psql, fonts-dejavu-core")
# Qt's own dialogs (file, print, message buttons) in the program's language.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "postgresql-client")
set(CPACK_STRIP_FILES ON)
include(CPack)
