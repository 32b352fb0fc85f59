# The Debian package: `scripts/package`, or `cpack` in a build folder with the prefix /usr.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qvsdk-viewer)
set(CPACK_PACKAGE_VENDOR Quivra)
set(CPACK_PACKAGE_CONTACT "Quivra <viewer@quivra.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "viewer and bench tool for spatial-sensing devices")
set(CPACK_PACKAGE_DESCRIPTION
    "Shows every stream of a headset or camera module: inertial readings, fisheye
stereo pictures with tracked key points, colour, time-of-flight depth and
infrared, stereo depth, and the six-degree-of-freedom pose with map and planes.
.
Streams can be tuned while they run, kept as presets, saved as pictures, point
clouds and pose files. Without hardware it works on simulated devices and on
recordings.")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# The libraries are computed; what the documents import isn't linked and has to be named, as has what is only loaded.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/sim)
set(loaded_packages
    libqt5svg5 qml-module-qtquick2 qml-module-qtquick-window2 qml-module-qtquick-layouts qml-module-qtqml
    qml-module-qtqml-models2 qml-module-qtquick-controls qml-module-qtquick-controls2 qml-module-qtquick-templates2
    qml-module-qtquick-extras qml-module-qtquick-dialogs qml-module-qtquick-privatewidgets qml-module-qt-labs-settings
    qml-module-qt-labs-platform qml-module-qt-labs-folderlistmodel qml-module-qtgraphicaleffects
    qml-module-qtquick-particles2 qml-module-qtquick-scene3d qml-module-qt3d)
list(JOIN loaded_packages ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
# The interface's font and that of the Chinese and Japanese texts; a desktop to open the guide and the captures with.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-crosextra-carlito, fonts-noto-cjk, libgl1-mesa-dri, xdg-utils")

include(CPack)
