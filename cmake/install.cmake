# What an installation consists of, and where it goes. The program looks for ../share/quorvane from its own folder, so the
# two folders keep their names whatever the prefix is.
set(CMAKE_INSTALL_BINDIR bin)
set(CMAKE_INSTALL_DATADIR share)
set(CMAKE_INSTALL_DOCDIR share/doc/quorvane)
include(GNUInstallDirs)

set(quorvane_packaging ${PROJECT_SOURCE_DIR}/packaging)
set(quorvane_icons ${PROJECT_SOURCE_DIR}/resources/icons)
set(quorvane_install_folder ${CMAKE_BINARY_DIR}/install)
file(MAKE_DIRECTORY ${quorvane_install_folder})

# quorvane_gzip(NAME SOURCE): SOURCE compressed as NAME in the install folder, the same bytes at any time and place.
set(quorvane_compressed)
function(quorvane_gzip name source)
  set(output ${quorvane_install_folder}/${name})
  add_custom_command(OUTPUT ${output}
    COMMAND gzip -9nc ${source} > ${output}
    DEPENDS ${source}
    COMMENT "Compressing ${name}"
    VERBATIM)
  set(quorvane_compressed ${quorvane_compressed} ${output} PARENT_SCOPE)
endfunction()

set(pages quorvane.1 quorvane-list.1 quorvane-db.1)
foreach(page ${pages})
  quorvane_gzip(${page}.gz ${quorvane_packaging}/man/${page})
  install(FILES ${quorvane_install_folder}/${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
quorvane_gzip(changelog.Debian.gz ${quorvane_packaging}/debian/changelog)

# The database that a user's first start copies into the user's own folder.
add_custom_command(OUTPUT ${quorvane_install_folder}/hwids.mdb
  COMMAND quorvane-db build --output ${quorvane_install_folder}/hwids.mdb
  DEPENDS quorvane-db
  COMMENT "Building the default database"
  VERBATIM)
add_custom_target(installed-files ALL DEPENDS ${quorvane_compressed} ${quorvane_install_folder}/hwids.mdb)

configure_file(${quorvane_packaging}/quorvane.metainfo.xml.in ${quorvane_install_folder}/quorvane.metainfo.xml @ONLY)

install(TARGETS quorvane quorvane-list quorvane-db RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${quorvane_install_folder}/hwids.mdb
  ${PROJECT_SOURCE_DIR}/resources/improve_database_keywords_to_skip.txt
  DESTINATION ${CMAKE_INSTALL_DATADIR}/quorvane)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/color_presets DESTINATION ${CMAKE_INSTALL_DATADIR}/quorvane)
install(FILES ${quorvane_packaging}/quorvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${quorvane_install_folder}/quorvane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
  RENAME ${QUORVANE_COMPONENT_ID}.metainfo.xml)
foreach(size 16 24 32 48 64 128 256)
  install(FILES ${quorvane_icons}/quorvane-${size}.png
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME quorvane.png)
endforeach()
install(FILES ${quorvane_icons}/quorvane.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES
  ${quorvane_packaging}/completions/quorvane
  ${quorvane_packaging}/completions/quorvane-db
  ${quorvane_packaging}/completions/quorvane-list
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${quorvane_packaging}/debian/copyright ${quorvane_install_folder}/changelog.Debian.gz
  DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${quorvane_packaging}/debian/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
  RENAME quorvane)
