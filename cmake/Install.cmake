# Headers, all libraries, the tool, zacert.pc, the CMake package, and what documentation there is.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zacert)

install(TARGETS zacert zacert-static EXPORT zacertTargets)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
foreach(library IN LISTS ZACERT_COMPANIONS)
  install(TARGETS zacert-${library} EXPORT zacertTargets)
  install(DIRECTORY companion/${library}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
  configure_file(packaging/zacert-${library}.pc.in zacert-${library}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zacert-${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
install(EXPORT zacertTargets NAMESPACE zacert:: DESTINATION ${package_dir})

if(ZACERT_BUILD_TOOL)
  install(TARGETS zacert-tool)
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    # Outside the loader's own path the tool finds its library beside itself.
    file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(zacert-tool PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  endif()
endif()

configure_file(packaging/zacert.pc.in zacert.pc @ONLY)
configure_package_config_file(packaging/zacertConfig.cmake.in zacertConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(zacertConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zacert.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zacertConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/zacertConfigVersion.cmake
  DESTINATION ${package_dir})

foreach(section IN ITEMS 1 3 5 7)
  file(GLOB pages CONFIGURE_DEPENDS docs/man/*.${section})
  install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
file(GLOB documents CONFIGURE_DEPENDS README.md CHANGELOG.md LICENSE docs/*.md)
install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.[ch] PATTERN *.md)
