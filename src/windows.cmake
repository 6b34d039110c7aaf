# The windows, and what they need of the toolkit.
find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets PrintSupport SerialPort Svg)
file(GLOB window_sources CONFIGURE_DEPENDS platform/*.cpp */windows/*.cpp platform/*.h */windows/*.h)
add_library(hyetex_windows STATIC ${window_sources})
set_target_properties(hyetex_windows PROPERTIES AUTOMOC ON)
target_link_libraries(hyetex_windows PUBLIC hyetex_scan hyetex_cairo Qt6::Widgets Qt6::PrintSupport Qt6::SerialPort Qt6::Svg)
hyetex_precompile(hyetex_windows <QtWidgets> <string> <vector>)

# An object library: what nothing refers to by name would be left out of a static one.
add_library(hyetex_icons OBJECT app/icons.qrc)
set_target_properties(hyetex_icons PROPERTIES AUTORCC ON)
target_link_libraries(hyetex_icons PUBLIC hyetex_flags Qt6::Core)

# All of the desktop program but its main, as the window tests use it.
file(GLOB app_sources CONFIGURE_DEPENDS app/*.cpp app/*.h)
list(FILTER app_sources EXCLUDE REGEX "/main\\.cpp$")
add_library(hyetex_app STATIC ${app_sources})
set_target_properties(hyetex_app PROPERTIES AUTOMOC ON)
target_link_libraries(hyetex_app PUBLIC hyetex_windows hyetex_commandline)
target_precompile_headers(hyetex_app REUSE_FROM hyetex_windows)

# The help page stands beside the programs' folder, in the build tree as where they are installed.
include(GNUInstallDirs)
file(GLOB help_pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/help/*)
foreach(page ${help_pages})
  get_filename_component(name ${page} NAME)
  configure_file(${page} ${PROJECT_BINARY_DIR}/share/hyetex/help/${name} COPYONLY)
endforeach()
install(FILES ${help_pages} DESTINATION ${CMAKE_INSTALL_DATADIR}/hyetex/help)

add_executable(hyetex app/main.cpp)
target_link_libraries(hyetex PRIVATE hyetex_app hyetex_icons)
install(TARGETS hyetex)
