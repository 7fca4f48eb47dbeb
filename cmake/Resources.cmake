# The interface texts: the generator (a host program, also when cross-compiling) turns the
# sources in Win/Resources into VelorStrings.rc and the group files in build/resources.
# Defines VLR_RESOURCES_RC (the generated .rc) and the target vlr_resources.

set(VLR_RESOURCE_SOURCES_DIR ${PROJECT_SOURCE_DIR}/Win/Resources)
set(VLR_RESOURCES_DIR ${CMAKE_BINARY_DIR}/resources)
set(VLR_RESOURCES_RC ${VLR_RESOURCES_DIR}/VelorStrings.rc)
file(GLOB VLR_RESOURCE_TEXTS CONFIGURE_DEPENDS ${VLR_RESOURCE_SOURCES_DIR}/strings/*.txt
     ${VLR_RESOURCE_SOURCES_DIR}/groups/*.txt)

if(CMAKE_CROSSCOMPILING)
  find_program(VLR_HOST_CXX NAMES g++ c++ REQUIRED)
  set(VLR_RESOURCE_GENERATOR ${CMAKE_BINARY_DIR}/host/vlr_resource_generator)
  add_custom_command(
    OUTPUT ${VLR_RESOURCE_GENERATOR}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/host
    COMMAND ${VLR_HOST_CXX} -std=c++17 -O1 -Wall -Wextra -Werror -o ${VLR_RESOURCE_GENERATOR}
            ${VLR_RESOURCE_SOURCES_DIR}/ResourceGenerator.cpp
    DEPENDS ${VLR_RESOURCE_SOURCES_DIR}/ResourceGenerator.cpp
    COMMENT "Building the resource generator for the build machine")
  set(VLR_RESOURCE_GENERATOR_COMMAND ${VLR_RESOURCE_GENERATOR})
  set(VLR_RESOURCE_GENERATOR_DEPENDS ${VLR_RESOURCE_GENERATOR})
else()
  add_executable(vlr_resource_generator ${VLR_RESOURCE_SOURCES_DIR}/ResourceGenerator.cpp)
  target_link_libraries(vlr_resource_generator PRIVATE vlr_warnings)
  set(VLR_RESOURCE_GENERATOR_COMMAND $<TARGET_FILE:vlr_resource_generator>)
  set(VLR_RESOURCE_GENERATOR_DEPENDS vlr_resource_generator)
endif()

add_custom_command(
  OUTPUT ${VLR_RESOURCES_RC}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${VLR_RESOURCES_DIR}
  COMMAND ${VLR_RESOURCE_GENERATOR_COMMAND} ${VLR_RESOURCE_SOURCES_DIR} ${VLR_RESOURCES_DIR}
  DEPENDS ${VLR_RESOURCE_GENERATOR_DEPENDS} ${VLR_RESOURCE_TEXTS}
  COMMENT "Generating the coded interface texts")
add_custom_target(vlr_resources ALL DEPENDS ${VLR_RESOURCES_RC})
