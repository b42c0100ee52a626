set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/core)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/Utils.cpp
  ${_dir}/PixelTypeId.cpp
  ${_dir}/PixelType.cpp
  ${_dir}/Registry.cpp
  ${_dir}/Catalogue.cpp
  ${_dir}/Startup.cpp
  ${_dir}/FlatTypes.cpp
  ${_dir}/StreamStores.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/core/PixelTypeTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/core/RegistryTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/core/CatalogueTest.cpp)
