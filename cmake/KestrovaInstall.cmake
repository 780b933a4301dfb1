# What integrators install: the library, the headers that hosts may include, the resource bundle, the
# sandbox and the doctor. Components: runtime, dev, tools.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# What hosts include by name; with them goes all that they include.
set(public_headers
    platform/capture/CameraConfiguration.h platform/capture/CameraSource.h
    platform/liveness/DevelopmentEngine.h platform/liveness/LivenessEngine.h
    platform/uikit/UIApplication.h platform/uikit/UINib.h platform/uikit/UIViewController.h
    sdk/core/Kestrova.h sdk/ui/KestrovaButton.h sdk/ui/KestrovaButtonPlaceholder.h)
set(headers "")
while(public_headers)
  list(POP_FRONT public_headers header)
  list(APPEND headers ${header})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${header}")
  file(STRINGS "${PROJECT_SOURCE_DIR}/${header}" lines REGEX "^#include \"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include \"(.*)\".*" "\\1" included "${line}")
    if(NOT included IN_LIST headers AND NOT included IN_LIST public_headers)
      list(APPEND public_headers ${included})
    endif()
  endforeach()
endwhile()
foreach(header IN LISTS headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kestrova/${folder} COMPONENT dev)
endforeach()

install(DIRECTORY "${KESTROVA_BUNDLE_DIR}" DESTINATION ${CMAKE_INSTALL_DATADIR}/kestrova
        COMPONENT runtime)
install(TARGETS kestrova-sandbox kestrova-doctor
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)

set(targets kestrova)
if(NOT BUILD_SHARED_LIBS)
  list(APPEND targets kestrova_options kestrova_dispatch kestrova_foundation kestrova_network
       kestrova_graphics kestrova_uikit kestrova_video kestrova_capture kestrova_liveness
       kestrova_sdk)
endif()
install(TARGETS ${targets} EXPORT KestrovaTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kestrova)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kestrova)
install(EXPORT KestrovaTargets NAMESPACE Kestrova:: DESTINATION ${package_dir} COMPONENT dev)
set(bundle_dir ${CMAKE_INSTALL_DATADIR}/kestrova/Kestrova.bundle)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/KestrovaConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/KestrovaConfig.cmake" INSTALL_DESTINATION ${package_dir}
  PATH_VARS bundle_dir)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KestrovaConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/KestrovaConfig.cmake"
              "${PROJECT_BINARY_DIR}/KestrovaConfigVersion.cmake"
        DESTINATION ${package_dir} COMPONENT dev)
if(BUILD_SHARED_LIBS)
  # From the file's own place to the prefix, so that a moved tree works.
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
             BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" OUTPUT_VARIABLE up)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/kestrova.pc.in" "${PROJECT_BINARY_DIR}/kestrova.pc"
                 @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/kestrova.pc"
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrova)
set(CPACK_PACKAGE_VENDOR Kestrova)
set(CPACK_PACKAGE_CONTACT "The Kestrova team <sdk@kestrova.example>")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# So that the packages of hosts know which one they need.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkestrova${KESTROVA_ABI})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Identity verification SDK (library and resources)")
# What is loaded by name at run time: encoder, container, cameras and decoders; pictures.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS
    "gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, gstreamer1.0-plugins-bad")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "qt6-wayland")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libkestrova-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "libkestrova${KESTROVA_ABI} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_DESCRIPTION "Identity verification SDK (headers, CMake and pkg-config files)")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME kestrova-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "Sandbox of the verification backend, and a check of machines")
include(CPack)
foreach(component RUNTIME DEV TOOLS)
  string(TOLOWER ${component} name)
  install(FILES LICENSE RENAME copyright COMPONENT ${name}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${component}_PACKAGE_NAME})
endforeach()
