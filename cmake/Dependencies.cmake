# What is installed and linked, found in one place.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

pkg_check_modules(jpeg REQUIRED IMPORTED_TARGET libjpeg)
pkg_check_modules(png REQUIRED IMPORTED_TARGET libpng)
pkg_check_modules(deflate REQUIRED IMPORTED_TARGET libdeflate)
pkg_check_modules(zlib REQUIRED IMPORTED_TARGET zlib)
pkg_check_modules(isal REQUIRED IMPORTED_TARGET libisal)
pkg_check_modules(tiff REQUIRED IMPORTED_TARGET libtiff-4)
pkg_check_modules(heif REQUIRED IMPORTED_TARGET libheif)
pkg_check_modules(webp REQUIRED IMPORTED_TARGET libwebp)
pkg_check_modules(webpdemux REQUIRED IMPORTED_TARGET libwebpdemux)
pkg_check_modules(imagequant REQUIRED IMPORTED_TARGET imagequant)
pkg_check_modules(zimg REQUIRED IMPORTED_TARGET zimg)
pkg_check_modules(lcms2 REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(exiv2 REQUIRED IMPORTED_TARGET exiv2)
pkg_check_modules(seccomp REQUIRED IMPORTED_TARGET libseccomp)
find_package(GIF REQUIRED)
pkg_check_modules(gio REQUIRED IMPORTED_TARGET gio-2.0)
pkg_check_modules(plist REQUIRED IMPORTED_TARGET libplist-2.0)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Concurrent DBus Network)

# A machine without a desktop builds the command line alone.
option(VELLUMINE_WINDOWS "Build the windows, which need Qt Quick" ON)
if(VELLUMINE_WINDOWS AND NOT VELLUMINE_FUZZ)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Gui Widgets Qml Quick QuickControls2 QuickTest Svg DBus
        LinguistTools)
    pkg_check_modules(xcb REQUIRED IMPORTED_TARGET xcb xcb-xfixes)
endif()
