# What an installation holds: program, library, guide, menu entry, icons and what software centres show.
# The Documentation button opens /usr/share/doc/qvsdk/index.html, so the prefix of a package is /usr.

include(GNUInstallDirs)
# A folder of the program's own: the library is for no other program.
set(QV_INSTALL_LIBDIR ${CMAKE_INSTALL_LIBDIR}/qvsdk-viewer)
set(QV_INSTALL_GUIDEDIR ${CMAKE_INSTALL_DATADIR}/doc/qvsdk)

install(TARGETS qvsdk-viewer RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
file(RELATIVE_PATH QV_LIBRARY_FROM_BIN /${CMAKE_INSTALL_BINDIR} /${QV_INSTALL_LIBDIR})
set_target_properties(qvsdk-viewer PROPERTIES INSTALL_RPATH "$ORIGIN/${QV_LIBRARY_FROM_BIN}")
if(NOT QV_LIBRARY)
    install(TARGETS qvsdk LIBRARY DESTINATION ${QV_INSTALL_LIBDIR} NAMELINK_SKIP)
endif()

# The guide. The page on simulated devices is made from the text in the tree, to which the guide there links.
find_program(CMARK_PROGRAM cmark-gfm)
set(guide_source ${PROJECT_SOURCE_DIR}/docs/simulated-devices.md)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${guide_source} ${PROJECT_SOURCE_DIR}/docs/page.html.in
    ${PROJECT_SOURCE_DIR}/docs/index.html)
set(PAGE_TITLE "Simulated devices")
if(CMARK_PROGRAM)
    execute_process(COMMAND ${CMARK_PROGRAM} -e table ${guide_source} OUTPUT_VARIABLE PAGE_BODY COMMAND_ERROR_IS_FATAL ANY)
else()
    file(READ ${guide_source} PAGE_BODY)
    string(REPLACE "&" "&amp;" PAGE_BODY "${PAGE_BODY}")
    string(REPLACE "<" "&lt;" PAGE_BODY "${PAGE_BODY}")
    set(PAGE_BODY "<pre>${PAGE_BODY}</pre>")
endif()
configure_file(docs/page.html.in ${PROJECT_BINARY_DIR}/docs/simulated-devices.html @ONLY)
file(READ docs/index.html GUIDE)
string(REPLACE "simulated-devices.md" "simulated-devices.html" GUIDE "${GUIDE}")
file(WRITE ${PROJECT_BINARY_DIR}/docs/index.html "${GUIDE}")
install(FILES ${PROJECT_BINARY_DIR}/docs/index.html docs/guide.css ${PROJECT_BINARY_DIR}/docs/simulated-devices.html
    DESTINATION ${QV_INSTALL_GUIDEDIR})
install(DIRECTORY docs/pictures DESTINATION ${QV_INSTALL_GUIDEDIR} FILES_MATCHING PATTERN "*.png")

install(FILES packaging/com.quivra.qvsdk_viewer.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/com.quivra.qvsdk_viewer.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES images/quivra_ico.svg DESTINATION ${icons}/scalable/apps RENAME qvsdk-viewer.svg)
foreach(size 16 24 32 48 64 128 256 512)
    install(FILES packaging/icons/${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME qvsdk-viewer.png)
endforeach()

# Manual and change log go out compressed, without a time stamp so that the same tree gives the same package.
find_program(GZIP_PROGRAM gzip REQUIRED)
function(qv_install_compressed source folder name)
    set(packed ${PROJECT_BINARY_DIR}/packed/${name}.gz)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packed)
    execute_process(COMMAND ${GZIP_PROGRAM} -9nc ${source} OUTPUT_FILE ${packed}
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${packed} DESTINATION ${folder})
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${source})
endfunction()
qv_install_compressed(docs/qvsdk-viewer.1 ${CMAKE_INSTALL_MANDIR}/man1 qvsdk-viewer.1)
qv_install_compressed(packaging/changelog ${CMAKE_INSTALL_DATADIR}/doc/qvsdk-viewer changelog)
install(FILES packaging/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qvsdk-viewer)
