# Every outside library, found once. A target names the ones it wraps; nothing else may include them.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
# Each shared library costs a program a fraction of a millisecond before it begins.
set(Boost_USE_STATIC_LIBS ON)
find_package(Boost 1.81 REQUIRED COMPONENTS json url)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(OpenSSL REQUIRED)
find_package(fmt REQUIRED)
find_package(CLI11 REQUIRED)
find_package(GTest REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(rapidcheck REQUIRED)
# Generators that run in the build, and the architecture checks.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)

pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0 gio-unix-2.0)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo cairo-svg cairo-pdf cairo-png)
pkg_check_modules(PANGO REQUIRED IMPORTED_TARGET pangocairo)
pkg_check_modules(GTK REQUIRED IMPORTED_TARGET gtk+-3.0)
pkg_check_modules(LAYERSHELL REQUIRED IMPORTED_TARGET gtk-layer-shell-0)
pkg_check_modules(WAYLAND REQUIRED IMPORTED_TARGET wayland-client)
pkg_check_modules(CURL REQUIRED IMPORTED_TARGET libcurl)
pkg_check_modules(LIBSECRET REQUIRED IMPORTED_TARGET libsecret-1)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(SYSTEMD REQUIRED IMPORTED_TARGET libsystemd)

include(GoogleTest)
