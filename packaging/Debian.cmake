# The Debian packages, one for each part; ./package builds and checks them.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL typeforge-import)
if(TYPEFORGE_WIZARD)
    list(APPEND CPACK_COMPONENTS_ALL typeforge)
endif()
# The maintainer is the builder of the packages, given by Debian's variables; else the author of the commit.
if(NOT "$ENV{DEBEMAIL}" STREQUAL "")
    set(CPACK_PACKAGE_CONTACT "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>")
else()
    execute_process(COMMAND git -C ${CMAKE_SOURCE_DIR} log -1 "--format=%an <%ae>"
        OUTPUT_VARIABLE CPACK_PACKAGE_CONTACT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

set(CPACK_DEBIAN_TYPEFORGE-IMPORT_PACKAGE_NAME typeforge-import)
set(CPACK_DEBIAN_TYPEFORGE-IMPORT_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TYPEFORGE-IMPORT_DESCRIPTION
"command that derives message broker types from schemas, messages and tables
typeforge-import reads a DTD, an XML or JSON Schema, a WSDL, an OpenAPI,
AsyncAPI or Avro description, example messages in XML or JSON, or the tables
of an ODBC data source, and makes the type definitions that a message broker
needs: records, tables, enumerations and arrays. It writes them to a file or
creates them in the broker's repository.
.
This package holds the command alone, which needs no graphical desktop.")
# The SQLite driver is needed for the repository \"local\".
set(CPACK_DEBIAN_TYPEFORGE-IMPORT_PACKAGE_RECOMMENDS "libsqliteodbc")
set(CPACK_DEBIAN_TYPEFORGE-IMPORT_PACKAGE_SUGGESTS "odbc-postgresql, odbc-mariadb, tdsodbc, unixodbc")
# Older builds had both components in one package.
set(CPACK_DEBIAN_TYPEFORGE-IMPORT_PACKAGE_REPLACES "typeforge (<< ${version})")
set(CPACK_DEBIAN_TYPEFORGE-IMPORT_PACKAGE_BREAKS "typeforge (<< ${version})")

set(CPACK_DEBIAN_TYPEFORGE_PACKAGE_NAME typeforge)
set(CPACK_DEBIAN_TYPEFORGE_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TYPEFORGE_DESCRIPTION
"wizard that derives message broker types from schemas, messages and tables
Typeforge derives type definitions for a message broker from a description of
your messages: a DTD, an XML or JSON Schema, an API description, XML or JSON
messages, an earlier set of types, or tables of a database. It shows every type
before it is written, and writes all of them into one file or creates them in
the broker's repository.
.
This package holds the wizard; typeforge-import is its command for scripts.")
# Qt loads platform plugins at run time, so dpkg-shlibdeps doesn't find them.
set(CPACK_DEBIAN_TYPEFORGE_PACKAGE_DEPENDS "typeforge-import (= ${version}), qt6-qpa-plugins")
set(CPACK_DEBIAN_TYPEFORGE_PACKAGE_RECOMMENDS
    "qt6-gtk-platformtheme | qt6-xdgdesktopportal-platformtheme, qt6-wayland, xdg-utils, libsqliteodbc")
set(CPACK_DEBIAN_TYPEFORGE_PACKAGE_SUGGESTS "odbc-postgresql, odbc-mariadb, tdsodbc, unixodbc")

# Each package has its licence and its changelog (Debian Policy 12.5, 12.7).
find_program(GZIP gzip REQUIRED)
configure_file(changelog.in changelog @ONLY)
set(changelogs ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
add_custom_command(OUTPUT ${changelogs} DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/changelog ${CMAKE_SOURCE_DIR}/CHANGELOG.md
    COMMAND ${GZIP} -9nc ${CMAKE_CURRENT_BINARY_DIR}/changelog > changelog.Debian.gz
    COMMAND ${GZIP} -9nc ${CMAKE_SOURCE_DIR}/CHANGELOG.md > changelog.gz)
add_custom_target(debian_changelog ALL DEPENDS ${changelogs})
foreach(part ${CPACK_COMPONENTS_ALL})
    install(FILES copyright ${changelogs} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${part} COMPONENT ${part})
endforeach()
include(CPack)
