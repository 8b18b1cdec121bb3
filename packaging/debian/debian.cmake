# The two Debian packages: the program, and the data for every architecture.
set(name_game talvery)
set(name_data talvery-data)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)

# packed FILE NAME: FILE compressed as Debian wants it, in the build folder.
function(packed file name)
    configure_file(${file} ${name} @ONLY)
    execute_process(COMMAND gzip -9nf ${CMAKE_CURRENT_BINARY_DIR}/${name}
                    COMMAND_ERROR_IS_FATAL ANY)
endfunction()

packed(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog)
execute_process(COMMAND date --utc --rfc-email --date ${RELEASE_DATE} OUTPUT_VARIABLE MAIL_DATE
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
packed(debian/changelog.in changelog.Debian)
packed(${CMAKE_CURRENT_BINARY_DIR}/talvery.6 man/talvery.6)
install_into(${CMAKE_INSTALL_MANDIR}/man6 game FILES ${CMAKE_CURRENT_BINARY_DIR}/man/talvery.6.gz)
foreach(component game data)
    # This folder CPack has made itself.
    install(CODE "execute_process(COMMAND chmod 755 \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\"
                                  COMMAND_ERROR_IS_FATAL ANY)" COMPONENT ${component})
    install_into(${CMAKE_INSTALL_DATADIR}/doc/${name_${component}} ${component}
                 FILES debian/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
                       ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz)
    install_into(${CMAKE_INSTALL_DATADIR}/lintian/overrides ${component}
                 FILES debian/${name_${component}}.lintian-overrides RENAME ${name_${component}})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR})
set(CPACK_COMPONENTS_ALL game data)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Nobody has published the packages yet; whoever does, puts a name and an address here.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Talvery developers <developers@talvery.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_GAME_PACKAGE_NAME ${name_game})
set(CPACK_DEBIAN_GAME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_GAME_PACKAGE_DEPENDS
    "talvery-data (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_COMPONENT_GAME_DESCRIPTION "walk a poodle through a burning storybook town
Drossmere, a storybook town, burns at dusk. A poodle walks among its 108
houses, talks to the townspeople and fights other poodles in turns.
.
This package contains the program and the launcher.")

set(CPACK_DEBIAN_DATA_PACKAGE_NAME ${name_data})
set(CPACK_DEBIAN_DATA_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DATA_DESCRIPTION "walk a poodle through a burning storybook town - data
Drossmere, a storybook town, burns at dusk. A poodle walks among its 108
houses, talks to the townspeople and fights other poodles in turns.
.
This package contains the models, the pictures and the animations.")
include(CPack)
